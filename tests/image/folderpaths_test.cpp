#include "image/folderpaths.h"
#include "support/qtprint.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace mms;

TEST(FolderPaths, BrowseStartsAtRootsWithTheirSlashAndAtFoldersWithout) {
    const QStringList roots{QStringLiteral("/"), QStringLiteral("/media/USB/")};
    EXPECT_EQ(browseStartPath(QString(), roots), QDir::rootPath());
    EXPECT_EQ(browseStartPath(QStringLiteral("/"), roots), QStringLiteral("/"));
    EXPECT_EQ(browseStartPath(QStringLiteral("/media/usb/"), roots), QStringLiteral("/media/usb/"));
    EXPECT_EQ(browseStartPath(QStringLiteral("/home/ann/Pictures/"), roots),
              QStringLiteral("/home/ann/Pictures"));
    EXPECT_EQ(browseStartPath(QStringLiteral("/home/ann/Pictures"), roots),
              QStringLiteral("/home/ann/Pictures"));
    // Only one trailing separator goes.
    EXPECT_EQ(browseStartPath(QStringLiteral("/home//"), roots), QStringLiteral("/home/"));

    EXPECT_TRUE(isDriveRoot(QStringLiteral("/MEDIA/usb/"), roots));
    EXPECT_FALSE(isDriveRoot(QStringLiteral("/media/usb"), roots));
    EXPECT_FALSE(isDriveRoot(QString(), roots));
    EXPECT_EQ(addTrailingSlash(QStringLiteral("/a")), QStringLiteral("/a/"));
    EXPECT_EQ(addTrailingSlash(QStringLiteral("/a/")), QStringLiteral("/a/"));
    EXPECT_EQ(removeTrailingSlash(QStringLiteral("/a")), QStringLiteral("/a"));
}

TEST(FolderPaths, TheMountedVolumesIncludeTheRoot) {
    const QStringList roots = driveRoots();
    EXPECT_TRUE(roots.contains(QStringLiteral("/")));
    for (const QString& root : roots)
        EXPECT_TRUE(root.endsWith(QLatin1Char('/'))) << root.toStdString();
    EXPECT_EQ(browseStartPath(QStringLiteral("/")), QStringLiteral("/"));
    EXPECT_EQ(browseStartPath(QDir::tempPath() + QStringLiteral("/x/")),
              QDir::tempPath() + QStringLiteral("/x"));
}
