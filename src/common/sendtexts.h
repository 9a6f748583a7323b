#pragma once

// Language entries of sending through the MMS service: the Send window, the Sent Messages window
// and the File menu's two commands, by number.
namespace mms::sendtext {

// Prompts.
inline constexpr int kPromptSaveBeforeSend = 20; // Yes/No
inline constexpr int kPromptRemoveSent = 21;     // Yes/No, %1: the message's name

// Errors.
inline constexpr int kErrNoService = 55;
inline constexpr int kErrNoModem = 56;
inline constexpr int kErrNotSent = 57; // %1: what refused it
inline constexpr int kErrNoRecipient = 58;
inline constexpr int kErrNotPhoneNumber = 59; // %1: what was typed
inline constexpr int kErrEmailRecipient = 60; // %1: what was typed
inline constexpr int kErrTooLargeToSend = 61; // %1: the message's size, %2: the service's limit
inline constexpr int kErrSentLog = 62;        // %1: what failed

// Interface strings.
inline constexpr int kMenuSend = 128;
inline constexpr int kMenuSent = 129; // also the Sent Messages window's title
inline constexpr int kSendTitle = 130;
inline constexpr int kRecipientsLabel = 131;
inline constexpr int kRecipientsHint = 132;
inline constexpr int kSubjectLabel = 133;
inline constexpr int kDeliveryReport = 134;
inline constexpr int kSizeAgainstLimit = 135; // %1: the message's size, %2: the limit or kUnknown
inline constexpr int kUnknown = 136;
inline constexpr int kNoLimit = 137;
inline constexpr int kSendButton = 138;
inline constexpr int kHandingOver = 139;
inline constexpr int kColumnMessage = 140;
inline constexpr int kColumnWhen = 141;
inline constexpr int kColumnRecipients = 142;
inline constexpr int kColumnStatus = 143;
inline constexpr int kStatusDraft = 144;
inline constexpr int kStatusSent = 145;
inline constexpr int kStatusDelivered = 146;
inline constexpr int kStatusFailed = 147; // %1: why
inline constexpr int kSendAgain = 148;
inline constexpr int kRemoveEntry = 149;
inline constexpr int kClose = 150;

inline constexpr int kUsedPrompts[] = {kPromptSaveBeforeSend, kPromptRemoveSent};
inline constexpr int kUsedErrors[] = {kErrNoService,      kErrNoModem,        kErrNotSent,
                                      kErrNoRecipient,    kErrNotPhoneNumber, kErrEmailRecipient,
                                      kErrTooLargeToSend, kErrSentLog};
inline constexpr int kUsedInterface[] = {
    kMenuSend,        kMenuSent,         kSendTitle,        kRecipientsLabel, kRecipientsHint, kSubjectLabel,
    kDeliveryReport,  kSizeAgainstLimit, kUnknown,          kNoLimit,         kSendButton,     kHandingOver,
    kColumnMessage,   kColumnWhen,       kColumnRecipients, kColumnStatus,    kStatusDraft,    kStatusSent,
    kStatusDelivered, kStatusFailed,     kSendAgain,        kRemoveEntry,     kClose};

} // namespace mms::sendtext
