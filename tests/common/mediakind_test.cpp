#include "common/mediakind.h"

#include <QStringList>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

TEST(MediaKind, TheFileNamesLastExtensionInAnyCaseDecides) {
    using enum MediaKind;
    // Names split at '|'.
    const std::pair<MediaKind, const char*> cases[] = {
        {Gif, "a.gif|A.GIF|mixed.Gif"},
        {Jpeg, "p.jpg|p.JPEG|p.jpe"},
        {Bmp, "b.Bmp"},
        {Png, "i.png"},
        {Video3gp, "clip.3GP"},
        {Amr, "v.amr"},
        {Midi, "/x/TUNE.MID"},
        {Text, "text1.txt"},
        {Smil, "main.smil"},
        {Other, "archive.gif.zip|/dir.gif/noext|gif|tune.midi|"}};
    for (const auto& [kind, paths] : cases)
        for (const QString& path : QString::fromLatin1(paths).split(u'|'))
            EXPECT_EQ(mediaKindOf(path), kind) << path.toStdString();
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
