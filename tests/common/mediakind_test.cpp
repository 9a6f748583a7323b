#include "common/mediakind.h"

#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

TEST(MediaKind, TheFileNamesLastExtensionInAnyCaseDecides) {
    const std::pair<const char*, MediaKind> cases[] = {
        {"a.gif", MediaKind::Gif},
        {"A.GIF", MediaKind::Gif},
        {"mixed.Gif", MediaKind::Gif},
        {"p.jpg", MediaKind::Jpeg},
        {"p.JPEG", MediaKind::Jpeg},
        {"p.jpe", MediaKind::Jpeg},
        {"b.Bmp", MediaKind::Bmp},
        {"i.png", MediaKind::Png},
        {"clip.3GP", MediaKind::Video3gp},
        {"v.amr", MediaKind::Amr},
        {"/x/TUNE.MID", MediaKind::Midi},
        {"text1.txt", MediaKind::Text},
        {"main.smil", MediaKind::Smil},
        {"archive.gif.zip", MediaKind::Other},
        {"/dir.gif/noext", MediaKind::Other},
        {"gif", MediaKind::Other},
        {"tune.midi", MediaKind::Other},
        {"", MediaKind::Other},
    };
    for (const auto& [path, kind] : cases)
        EXPECT_EQ(mediaKindOf(QString::fromLatin1(path)), kind) << path;
}

// Two rules go by the exact letters: the large-GIF refusal and the clip that keeps its thumbnail.
TEST(MediaKind, TheNamePatternsKeepTheirCase) {
    for (const char* gif : {"a.gif", "A.GIF"})
        EXPECT_TRUE(matchesGifPattern(QString::fromLatin1(gif))) << gif;
    EXPECT_FALSE(matchesGifPattern(u"mixed.Gif"_s));
    EXPECT_TRUE(matchesClipPattern(u"c.3gp"_s));
    EXPECT_FALSE(matchesClipPattern(u"c.3GP"_s));
}

} // namespace
