#include "plugins/SharedObjectPlugin.h"

#include "corvantide/plugin.h"
#include "plugins/JavaScriptObject.h"
#include "plugins/PluginHost.h"
#include "plugins/PluginMainForm.h"
#include "plugins/objCache.h"
#include "plugins/objPlugin.h"

#include <cstring>
#include <vector>

namespace {

// Room a plug-in has to rewrite a text argument.
constexpr qsizetype kTextRoom = 4096;

objPlugin& plugin() {
    static auto* object = new objPlugin(&PluginMainForm::instance());
    return *object;
}

objCache& cache() {
    return *static_cast<objCache*>(plugin().Cache());
}

// Keeps a text the host hands out alive until the next call.
const char* handOut(const QString& text) {
    static QByteArray kept;
    kept = text.toUtf8();
    return kept.constData();
}

const corvantide_host& hostTable() {
    static const corvantide_host table{
        CORVANTIDE_PLUGIN_VERSION,
        [](const char* name, uint32_t flags) {
            PluginHost::instance().RegisterPlugin(QString::fromUtf8(name), flags);
        },
        [](const char* owner, const char* name, int icon, int arg) {
            PluginHost::instance().AddOption(QString::fromUtf8(owner), QString::fromUtf8(name),
                                             icon, arg);
        },
        [](const char* owner, int arg) {
            return int(PluginHost::instance().DeleteOption(QString::fromUtf8(owner), arg));
        },
        [] { return plugin().BotIndex(); },
        [](int index, int count, const uint32_t* colours, const char* const* texts) {
            QVariantList pairs;
            for (int i = 0; i < count; ++i)
                pairs << colours[i] << QString::fromUtf8(texts[i]);
            plugin().AddText(index, pairs);
        },
        [](int index, const char* text) { plugin().AddQueue(index, QString::fromUtf8(text)); },
        [](int i) { return int(cache().BotOnline(i)); },
        [](int i) { return handOut(cache().BotName(i)); },
        [](int i) { return handOut(cache().BotChannel(i)); },
        [](int i) { return cache().UserCount(i); },
    };
    return table;
}

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
}

SharedObjectPlugin::~SharedObjectPlugin() = default;

QVariant SharedObjectPlugin::call(const QString& member, QVariantList& args) {
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
    call.host = &hostTable();
    call.argc = int(values.size());
    call.argv = values.data();
    if (function(&call) != 0) {
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
