#include "app/mmsc.h"

#include "store/messagestore.h"

namespace mms::cli {

namespace {

const char kUsage[] =
    "  list         prints the stored messages, one a line: the name, a tab and the modification time\n"
    "               of its index in local time (YYYY-MM-DDTHH:MM:SS), sorted by name";

int list(Context& context, const QStringList& args) {
    if (!args.isEmpty()) return fail(context, QStringLiteral("list takes no arguments (see mmsc --help)"));
    for (const StoredMessageInfo& info : MessageStore(context.home).list())
        context.out << info.name << '\t'
                    << info.indexModified.toLocalTime().toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss"))
                    << '\n';
    return 0;
}

const Registrar registrar("list", kUsage, list);

} // namespace

} // namespace mms::cli
