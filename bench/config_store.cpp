// Settings reads on the chat path: each event reads several settings, and
// nothing is cached, so a read must stay in the low microseconds on a store
// the size of a busy user's (5,000 keys).
#include "config/Folders.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

constexpr int kKeys = 5000;

const QString kProfiles = QStringLiteral("HKCU\\Software\\Corvantide4\\Profiles\\");

// One import, one transaction: 5,000 profile and userbase keys with values.
void fill(RegistryWrapper& store) {
    QByteArray text = "REGEDIT4\r\n\r\n";
    for (int i = 0; i < kKeys; ++i) {
        const QByteArray n = QByteArray::number(i);
        if (i % 2) {
            text += "[HKEY_CURRENT_USER\\Software\\Corvantide4\\Profiles\\Profile" + n +
                    "]\r\n\"Account\"=\"account" + n +
                    "\"\r\n\"Trigger\"=\".\"\r\n"
                    "\"IdleTime\"=dword:00000005\r\n\r\n";
        } else {
            text += "[HKEY_CURRENT_USER\\Software\\Corvantide4\\Databases\\Main\\user" + n +
                    "]\r\n\"Flags\"=dword:00000020\r\n\r\n";
        }
    }
    text += "[HKEY_CURRENT_USER\\Software\\Corvantide4\\Settings]\r\n"
            "\"FloodMode\"=dword:000003E8\r\n\"HideJoinLeave\"=dword:00000001\r\n\r\n";
    store.ImportRegText(text);
}

struct Fixture {
    Fixture() {
        SetHomeFolder(home.path());
        fill(RegistryWrapper::instance());
    }
    QTemporaryDir home;
};

RegistryWrapper& store() {
    static Fixture fixture;
    return RegistryWrapper::instance();
}

void BM_ReadSTRING(benchmark::State& state) {
    RegistryWrapper& registry = store();
    const QString key = kProfiles + QStringLiteral("Profile2501");
    const QString name = QStringLiteral("Account");
    for (auto _ : state)
        benchmark::DoNotOptimize(registry.ReadSTRING(key, name));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ReadSTRING);

void BM_ReadDWORD(benchmark::State& state) {
    RegistryWrapper& registry = store();
    const QString key = QStringLiteral("HKCU\\Software\\Corvantide4\\Databases\\Main\\user2500");
    const QString name = QStringLiteral("Flags");
    for (auto _ : state)
        benchmark::DoNotOptimize(registry.ReadDWORD(key, name, 0));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ReadDWORD);

void BM_ReadMissingValue(benchmark::State& state) {
    RegistryWrapper& registry = store();
    const QString key = kProfiles + QStringLiteral("Profile2501");
    const QString name = QStringLiteral("NotThere");
    for (auto _ : state)
        benchmark::DoNotOptimize(registry.ReadDWORD(key, name, 7));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ReadMissingValue);

void BM_SettingsGet(benchmark::State& state) {
    store();
    SettingsWrapper& settings = SettingsWrapper::instance();
    for (auto _ : state)
        benchmark::DoNotOptimize(settings.HideJoinLeave());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SettingsGet);

void BM_SettingsFloodMode(benchmark::State& state) {
    store();
    SettingsWrapper& settings = SettingsWrapper::instance();
    for (auto _ : state)
        benchmark::DoNotOptimize(settings.FloodMode());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SettingsFloodMode);

// Writes are rare (forms, commands) and each one waits for the disk.
void BM_WriteDWORD(benchmark::State& state) {
    RegistryWrapper& registry = store();
    const QString key = QStringLiteral("HKCU\\Software\\Corvantide4\\Databases\\Main\\user2500");
    const QString name = QStringLiteral("Flags");
    qint32 value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(registry.WriteDWORD(key, name, ++value));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WriteDWORD)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
