#include "common/folderpaths.h"
#include "support/qtprint.h"

#include <QDir>
#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace mms;

TEST(FolderPaths, BrowseStartsAtRootsWithTheirSlashAndAtFoldersWithout) {
    const QStringList roots{QStringLiteral("/"), QStringLiteral("/media/USB/")};
    EXPECT_EQ(browseStartPath(QString(), roots), QDir::rootPath());
    EXPECT_EQ(browseStartPath(QStringLiteral("/"), roots), QStringLiteral("/"));
    EXPECT_EQ(browseStartPath(QStringLiteral("/media/usb/"), roots), QStringLiteral("/media/usb/"));
    EXPECT_EQ(browseStartPath(QStringLiteral("/home/ann/"), roots), QStringLiteral("/home/ann"));
    EXPECT_EQ(browseStartPath(QStringLiteral("/home//"), roots), QStringLiteral("/home/")); // one slash only
    EXPECT_EQ(addTrailingSlash(QStringLiteral("/a")), QStringLiteral("/a/"));
    EXPECT_EQ(addTrailingSlash(QStringLiteral("/a/")), QStringLiteral("/a/"));

    const QStringList mounted = driveRoots();
    EXPECT_TRUE(mounted.contains(QStringLiteral("/")));
    EXPECT_EQ(mounted.filter(QRegularExpression(QStringLiteral("[^/]$"))), QStringList());
}
