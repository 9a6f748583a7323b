#include "common/filesize.h"
#include "common/localisation.h"
#include "composer/sizelimit.h"
#include "support/qtprint.h"
#include "support/scratchsettings.h"

#include <gtest/gtest.h>

using namespace mms;

TEST(SizeLimit, GaugeTurnsAmberAbove90PercentAndRedAboveTheSettingsLimit) {
    constexpr qint64 limit = 300 * 1024;
    const std::pair<qint64, GaugeLevel> levels[] = {
        {0, GaugeLevel::Normal},
        {limit * 9 / 10, GaugeLevel::Normal},
        {limit * 9 / 10 + 1, GaugeLevel::Near},
        {limit, GaugeLevel::Near},
        {limit + 1, GaugeLevel::Over},
    };
    for (const auto& [size, level] : levels)
        EXPECT_EQ(gaugeLevel(size, limit), level) << size;

    LanguageTexts texts;
    texts.interface = QStringList(sizetext::kLastInterface + 1, QString());
    texts.interface[sizetext::kKilobytes] = QStringLiteral("%1 KB");
    texts.interface[sizetext::kMegabytes] = QStringLiteral("%1 MB");
    Localisation loc;
    loc.setTexts(texts);
    const std::pair<qint64, const char*> sizes[] = {{0, "0 KB"},       {1, "1 KB"},
                                                    {102399, "99 KB"}, {102400, "100 KB"},
                                                    {1048576, "1 MB"}, {1048577, "1024 KB"}};
    for (const auto& [bytes, text] : sizes)
        EXPECT_EQ(sizeText(loc, bytes), QLatin1String(text)) << bytes;

    // The setting keeps a limit in range and otherwise gives the default.
    const test::ScratchSettings scratch;
    EXPECT_EQ(readSizeLimitSetting(), kDefaultSizeLimit);
    writeSizeLimitSetting(600 * 1024);
    EXPECT_EQ(readSizeLimitSetting(), 600 * 1024);
    writeSizeLimitSetting(5);
    EXPECT_EQ(readSizeLimitSetting(), kDefaultSizeLimit);
}
