#pragma once

#include "common/imagetexts.h"
#include "image/jpegwriter.h"

#include <QString>
#include <array>
#include <optional>

namespace mms {

// The JPEG quality every conversion uses (the same-size re-encode of a large picture and the fit
// search), kept as the setting "PictureQuality" beside the message size limit so that mmsc reads it
// too. Carriers with larger limits leave room for more detail than the standard 35.
struct PictureQualityPreset {
    int quality;
    int caption; // the language entry naming it
};
inline constexpr std::array<PictureQualityPreset, 3> kPictureQualityPresets{{
    {kJpegQuality, imagetext::kQualityStandard},
    {60, imagetext::kQualityHigh},
    {85, imagetext::kQualityBest},
}};

// A quality as typed: a whole number from 1 to 100.
std::optional<int> parsePictureQuality(const QString& text);

// The setting; kJpegQuality when it is missing or not a quality.
int readPictureQualitySetting();
void writePictureQualitySetting(int quality);

} // namespace mms
