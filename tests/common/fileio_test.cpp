#include "common/faultpoint.h"
#include "common/fileio.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

fileio::DeviceWriter writes(const char* bytes) {
    return [bytes](QIODevice& device) {
        return fileio::writeWhole(device, bytes) ? Status::ok() : Status::failure(device.errorString());
    };
}

// A writer that gets part of the way and then gives up, as an encoder meeting a missing part would.
Status halfThenFail(QIODevice& device) {
    device.write("half");
    return Status::failure(u"the part is missing"_s);
}

TEST(WriteFileSafely, ReplacesOnlyWhenCompleteAndNamesTheFileWithTheReason) {
    const struct {
        const char* name;
        const char* existing; // nullptr: no file there before
        fileio::DeviceWriter write;
        const char* after;   // the file's bytes afterwards; nullptr: no file
        const char* failure; // what the message holds after the file's name; "" on success
    } cases[] = {
        {"new.bin", nullptr, writes("fresh"), "fresh", ""},
        {"old.bin", "old", writes("new"), "new", ""},
        {"kept.bin", "old", halfThenFail, "old", "the part is missing"},
        {"none.bin", nullptr, halfThenFail, nullptr, "the part is missing"},
        {"no/such/dir/x.bin", nullptr, halfThenFail, nullptr, "No such file or directory"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const test::TempDir dir;
        const QString path = dir.file(QLatin1String(c.name));
        if (c.existing) dir.write(QLatin1String(c.name), c.existing);
        const Status s = fileio::writeFileSafely(path, c.write);
        const QString expected =
            *c.failure ? u"Cannot write \"%1\": "_s.arg(path) + QLatin1String(c.failure) : QString();
        EXPECT_EQ(s.message(), expected);
        EXPECT_EQ(s.isOk(), !*c.failure);
        EXPECT_EQ(test::TempDir::read(path), QByteArray(c.after)); // empty when there is no file
        EXPECT_EQ(QFileInfo::exists(path), c.after != nullptr);
        // No scratch file is left beside the target.
        EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), c.after ? 1 : 0);
    }
    const test::TempDir dir;
    ASSERT_TRUE(fileio::writeFileSafely(dir.file(u"b.bin"_s), QByteArrayView("bytes")).isOk());
    EXPECT_EQ(test::TempDir::read(dir.file(u"b.bin"_s)), QByteArray("bytes"));
}

TEST(FaultPoint, CountsStepsAndFailsThePlannedOneAsAFullDisk) {
    const test::TempDir dir;
    fileio::planFault({fileio::FaultKind::NoSpace, 2});
    EXPECT_TRUE(fileio::createFolder(dir.file(u"a"_s)).isOk());
    const Status s = fileio::writeFileSafely(dir.file(u"a/b"_s), QByteArrayView("x"));
    const Status t = fileio::writeFileSafely(dir.file(u"a/c"_s), QByteArrayView("x"));
    EXPECT_EQ(s.message(), u"Cannot write \"%1\": No space left on device"_s.arg(dir.file(u"a/b"_s)));
    EXPECT_TRUE(t.isOk());
    EXPECT_EQ(fileio::stepsTaken(), 4); // mkdir; create (failed); create, write
    EXPECT_FALSE(QFileInfo::exists(dir.file(u"a/b"_s)));
    fileio::planFault({});
}

} // namespace
