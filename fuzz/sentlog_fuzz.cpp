// Any bytes as the sent-messages log: loaded or refused naming the file, with the entries left as
// they were. A log that loads is saved and loads again to the same entries.
#include "common/workspace.h"
#include "fuzzcheck.h"
#include "send/sentlog.h"

#include <QFile>
#include <cstdint>

namespace {

bool sameEntries(const std::vector<mms::SentEntry>& a, const std::vector<mms::SentEntry>& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        const mms::SentEntry& x = a[i];
        const mms::SentEntry& y = b[i];
        // Times are kept to the second, in UTC.
        const bool sameTime =
            x.handedOver.isValid() == y.handedOver.isValid() &&
            (!x.handedOver.isValid() || x.handedOver.toSecsSinceEpoch() == y.handedOver.toSecsSinceEpoch());
        if (!sameTime || x.message != y.message || x.recipients != y.recipients || x.path != y.path ||
            x.status != y.status || x.reason != y.reason || x.snapshot != y.snapshot)
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString app = fuzzcheck::scratchPath();
    FUZZ_CHECK(QDir().mkpath(mms::workspace::userData(app)));
    mms::SentLog log(app);
    {
        QFile f(log.file());
        FUZZ_CHECK(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        FUZZ_CHECK(f.write(reinterpret_cast<const char*>(data), qint64(size)) == qint64(size));
    }
    const mms::Status s = log.load();
    if (!s) {
        FUZZ_CHECK(s.message().contains(QStringLiteral("sent.json")) && log.entries().empty());
        return 0;
    }
    const std::vector<mms::SentEntry> first = log.entries();
    FUZZ_CHECK(log.save().isOk());
    mms::SentLog again(app);
    FUZZ_CHECK(again.load().isOk());
    FUZZ_CHECK(sameEntries(first, again.entries()));
    for (const mms::SentEntry& e : first)
        FUZZ_CHECK(!mms::SentLog::line(e).isNull());
    return 0;
}
