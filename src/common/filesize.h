#pragma once

#include <QString>
#include <QtGlobal>

namespace mms {

class Localisation;

// A picture or sound file of this many bytes or more is too large to attach.
constexpr qint64 kAttachmentLimit = 102400;
constexpr bool isTooLarge(qint64 bytes) {
    return bytes >= kAttachmentLimit;
}

// Language entries of the size limit features: the fit question and its refusal, the export
// question, the busy indicator, the gauge and its limit setting, and the file sizes in the lists.
namespace sizetext {
constexpr int kPromptShrinkToFit = 13;       // %1 converted size, %2 limit (Yes/No)
constexpr int kPromptExportOverLimit = 14;   // %1 message size, %2 limit (Yes/No)
constexpr int kErrPictureCannotFit = 40;     // %1 why
constexpr int kShrinking = 99;               // busy indicator of the fit
constexpr int kKilobytes = 100;              // "%1 KB"
constexpr int kGaugeTip = 101;               // %1 size, %2 limit
constexpr int kSizeLimit = 102;              // limit button tooltip, custom limit window title
constexpr int kCustomLimit = 103;            // last entry of the limit menu
constexpr int kLimitInKilobytes = 104;       // label of the custom limit box
constexpr int kPictureWillBeConverted = 105; // tooltip of a large picture in the library
constexpr int kTooLargeToUse = 106;          // tooltip of a large sound or GIF in the library
constexpr int kMegabytes = 107;              // "%1 MB"
inline constexpr int kUsedPrompts[] = {kPromptShrinkToFit, kPromptExportOverLimit};
inline constexpr int kUsedErrors[] = {kErrPictureCannotFit};
inline constexpr int kUsedInterface[] = {kShrinking,
                                         kKilobytes,
                                         kGaugeTip,
                                         kSizeLimit,
                                         kCustomLimit,
                                         kLimitInKilobytes,
                                         kPictureWillBeConverted,
                                         kTooLargeToUse,
                                         kMegabytes};
} // namespace sizetext

// Whole kilobytes of 1024 bytes, rounded down so that a file under the 100 KB attachment limit never
// reads 100 KB; at least 1 for a size that is not 0.
qint64 wholeKilobytes(qint64 bytes);
// The size in the language's unit, for example "99 KB"; whole megabytes as "1 MB".
QString sizeText(const Localisation& texts, qint64 bytes);

} // namespace mms
