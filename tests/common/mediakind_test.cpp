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

TEST(MediaKind, SlidesTakeStillPicturesClipsAndSounds) {
    // picture, clip, sound
    const std::tuple<const char*, bool, bool, bool> cases[] = {
        {"a.GIF", true, false, false},  {"a.jpeg", true, false, false}, {"a.bmp", true, false, false},
        {"a.png", false, false, false}, {"a.3gp", false, true, false},  {"a.AMR", false, false, true},
        {"a.mid", false, false, true},  {"a.txt", false, false, false},
    };
    for (const auto& [path, picture, clip, sound] : cases) {
        const QString p = QString::fromLatin1(path);
        EXPECT_EQ(isPicture(p), picture) << path;
        EXPECT_EQ(isVideoClip(p), clip) << path;
        EXPECT_EQ(isSound(p), sound) << path;
    }
}

} // namespace
