#pragma once
// What the fuzz targets share: a failed check names its line before aborting, so a crash report
// says which property broke, and a scratch folder that lives as long as the process.

#include <QDir>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(ok) ::fuzzcheck::checkAt((ok), __FILE__, __LINE__)

namespace fuzzcheck {

inline void checkAt(bool ok, const char* file, int line) {
    if (ok) return;
    std::fprintf(stderr, "%s:%d: check failed\n", file, line);
    std::abort();
}

inline QString scratchPath() {
    static QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/mmsfuzz-XXXXXX"));
    return dir.path();
}

} // namespace fuzzcheck
