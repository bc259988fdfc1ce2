#include "sandbox/SandboxContext.h"

namespace sandbox {

SandboxContext::SandboxContext(const SandboxOptions& options)
    : options(options), store(options.accountsFile), oracle(options.hashFiles),
      hub(store, options.channelLimit), profiles(store, hub), clans(hub), friends(hub) {
    m_clock.start();
    if (options.trace) trace = std::make_unique<FrameTrace>(options.traceFile);
    hub.setPublicChannels({options.residentChannel});
}

std::unique_ptr<SandboxContext> SandboxContext::create(const SandboxOptions& options,
                                                       QString& error) {
    auto context = std::make_unique<SandboxContext>(options);
    if (!context->oracle.usable(error)) return nullptr;
    if (!context->store.load(error)) {
        error = QStringLiteral("can't read %1: %2").arg(options.accountsFile, error);
        return nullptr;
    }
    if (!options.keysFile.isEmpty()) {
        const int refused = context->keys.addFile(options.keysFile);
        if (refused != 0) {
            error = refused < 0 ? QStringLiteral("can't read %1").arg(options.keysFile)
                                : QStringLiteral("%1: %2 keys the decoder refuses")
                                      .arg(options.keysFile)
                                      .arg(refused);
            return nullptr;
        }
    }
    for (const Account& a : options.accounts) {
        if (AccountStore::checkName(a.name) != AccountStore::NameCheck::Ok) {
            error = QStringLiteral("account name %1 is not one the server accepts").arg(a.name);
            return nullptr;
        }
        // An account that a kept file already has stays as it is.
        context->store.create(AccountStore::fromPassword(a.name, a.password, a.email));
    }
    if (context->trace && !context->trace->isOpen()) {
        error = QStringLiteral("can't open the trace file %1").arg(options.traceFile);
        return nullptr;
    }
    return context;
}

} // namespace sandbox
