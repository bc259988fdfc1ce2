#include "plugins/SharedObjectPlugin.h"

#define CORVANTIDE_HOST
#include "corvantide/plugin.h"
#include "plugins/JavaScriptObject.h"
#include "plugins/NativeHostTable.h"

#include <cstddef>
#include <vector>

namespace {

// Room a plug-in has to rewrite a text argument.
constexpr qsizetype kTextRoom = 4096;

// What a plug-in built before the interface had a version mark knows.
constexpr corvantide_abi kFirstInterface{1, offsetof(corvantide_host, GetBaseName)};

bool isText(const QVariant& value) {
    return value.metaType().id() == QMetaType::QString;
}

bool isBytes(const QVariant& value) {
    return value.metaType().id() == QMetaType::QByteArray;
}

bool isNumber(const QVariant& value) {
    return !isText(value) && !isBytes(value) && !value.value<QObject*>() && value.canConvert<int>();
}

} // namespace

SharedObjectPlugin::SharedObjectPlugin(const QString& path) : m_library(path) {
    if (!m_library.load()) throw PluginCallError(m_library.errorString());
    const auto* mark =
        reinterpret_cast<const corvantide_abi*>(m_library.resolve("corvantide_plugin_abi"));
    const corvantide_abi built = mark ? *mark : kFirstInterface;
    QString refusal;
    if (built.version > CORVANTIDE_PLUGIN_VERSION || built.host_size > sizeof(corvantide_host))
        refusal = QStringLiteral("it was built for plug-in interface version %1, newer than this "
                                 "bot's version %2; build it against this bot's "
                                 "corvantide/plugin.h or update the bot")
                      .arg(built.version)
                      .arg(CORVANTIDE_PLUGIN_VERSION);
    else if (built.version < 1 || built.host_size < kFirstInterface.host_size)
        refusal = QStringLiteral("its interface mark (version %1, %2 bytes) is damaged")
                      .arg(built.version)
                      .arg(built.host_size);
    if (!refusal.isEmpty()) {
        m_library.unload();
        throw PluginCallError(refusal);
    }
}

SharedObjectPlugin::~SharedObjectPlugin() {
    m_library.unload();
}

QVariant SharedObjectPlugin::call(const QString& member, QVariantList& args) {
    if (spent()) throw PluginCallError(stoppedBecause());
    const auto function = reinterpret_cast<corvantide_member>(m_library.resolve(member.toLatin1()));
    if (!function) throw PluginCallError(JavaScriptObject::missingMemberText(member));

    std::vector<corvantide_value> values(size_t(args.size()));
    std::vector<QByteArray> buffers(size_t(args.size()));
    for (qsizetype i = 0; i < args.size(); ++i) {
        corvantide_value& value = values[size_t(i)];
        QByteArray& buffer = buffers[size_t(i)];
        if (isText(args[i])) {
            buffer = args[i].toString().toUtf8();
            buffer.resize(qMax(buffer.size() + 1, kTextRoom), '\0');
            value.text = buffer.data();
            value.text_size = size_t(buffer.size());
        } else if (isBytes(args[i])) {
            buffer = args[i].toByteArray();
            value.data = reinterpret_cast<const unsigned char*>(buffer.constData());
            value.data_length = size_t(buffer.size());
        } else if (isNumber(args[i])) {
            value.number = args[i].toInt();
        }
    }
    corvantide_call call{};
    call.host = &NativeHostTable();
    call.argc = int(values.size());
    call.argv = values.data();
    // Native code cannot be interrupted: the time bound does not hold it, and
    // passing its memory cap stops it when the member returns.
    ScriptWatchdog& watchdog = ScriptWatchdog::instance();
    static int depth = 0;
    watchdog.enter(nullptr, m_footprint);
    ++depth;
    const int status = function(&call);
    if (--depth == 0) ReleaseHandedOutTexts();
    if (watchdog.leave(nullptr) == ScriptWatchdog::Outcome::OverMemory ||
        !watchdog.settle(nullptr, m_footprint)) {
        markSpent(ScriptWatchdog::overMemoryText());
        throw PluginCallError(stoppedBecause());
    }
    if (status != 0) {
        call.error[sizeof call.error - 1] = '\0';
        throw PluginCallError(QString::fromUtf8(call.error));
    }
    for (qsizetype i = 0; i < args.size(); ++i) {
        const corvantide_value& value = values[size_t(i)];
        if (isText(args[i])) {
            buffers[size_t(i)].back() = '\0';
            args[i] = QString::fromUtf8(value.text);
        } else if (isNumber(args[i])) {
            QVariant number(value.number);
            if (number.convert(args[i].metaType())) args[i] = number;
        }
    }
    call.result[sizeof call.result - 1] = '\0';
    return QString::fromUtf8(call.result);
}
