#pragma once

// Language entries of the subject window of Export and Export as MMS, by number.
namespace mms::packagetext {

// Errors.
inline constexpr int kErrSubjectChar = 10; // a forbidden character typed or pasted
inline constexpr int kErrNoSubject = 16;
inline constexpr int kErrSubjectTooLong = 17;
inline constexpr int kErrNotAnAddress = 32; // %1: the piece of the recipients field

// Interface strings.
inline constexpr int kSubjectLabel = 60;
inline constexpr int kRecipientsLabel = 70; // Export as MMS only

inline constexpr int kUsedErrors[] = {kErrSubjectChar, kErrNoSubject, kErrSubjectTooLong, kErrNotAnAddress};
inline constexpr int kUsedInterface[] = {kSubjectLabel, kRecipientsLabel};

} // namespace mms::packagetext
