// One slot in a channel receives 100,000 chat events (talk, joins, leaves and
// flag changes) as frames on its socket: decoding, the handlers, the user
// list and the chat view, all of it, in events a second, with the default
// theme and time stamps on.
//
// The same stream again beside a growing userbase of aliases and groups and
// a growing mailbox, and joins, leaves and name look-ups in channels of 100
// and 10,000 users: the ratios printed at the end say whether the cost of an
// event grows with any of them. The walk from the first user that the name
// index replaced is the look-up's baseline.
//
// With web pages open, the same stream goes to each page as it arrives; the
// pages read everything in a process of their own, so the cost counted is the
// bot's share: the feed's messages and the writes to each socket.
#include "ChatTraffic.h"
#include "Ratios.h"
#include "chat/BotElement.h"
#include "commands/AliasesAndGroups.h"
#include "config/Folders.h"
#include "config/RegistryWrapper.h"
#include "config/SettingsWrapper.h"
#include "control/WebToken.h"
#include "platform/ChatDocument.h"
#include "platform/ListModel.h"
#include "platform/SocketControl.h"
#include "session/PacketWriter.h"
#include "session/SlotTable.h"
#include "statistics/UserNames.h"
#include "web/WebFront.h"
#include "web/WebPage.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <map>
#include <random>
#include <vector>

namespace {

constexpr int kEvents = 100'000;
// Frames arrive in reads of this many events, as from a busy socket.
constexpr int kPerRead = 32;

QString nameOf(int n) {
    static const char* const starts[] = {"Tal", "Mor", "Bre", "Kas", "Dun", "Eli", "Fen", "Gar"};
    return QString::fromLatin1(starts[n % 8]) + QStringLiteral("dor%1").arg(n);
}

// The channel as it stands at the start, and the stream of events that keeps
// it at its size: leaves and joins take turns, a leave taking someone present
// and a join bringing someone back; talk and flags come from those present.
struct Stream {
    QByteArray arrival;            // event 7 and the users already there
    std::vector<QByteArray> reads; // the events, kPerRead to a read
    std::vector<QString> lookups;  // for each event, the name it names
};

enum class Mix { Chat, Presence };

Stream makeStream(int channel, Mix mix) {
    Stream out;
    std::mt19937 rng(7);
    std::vector<int> present;
    std::vector<int> absent;
    out.arrival += chatEvent(7, 0, {}, QStringLiteral("Crowd"));
    for (int n = 0; n < channel; ++n) {
        present.push_back(n);
        out.arrival += chatEvent(1, n % 50 == 0 ? 0x02 : 0x10, nameOf(n), sampleStatstring(n));
    }
    for (int n = channel; n < channel + 200; ++n)
        absent.push_back(n);
    const auto take = [&](std::vector<int>& from) {
        const size_t at = rng() % from.size();
        const int n = from[at];
        from[at] = from.back();
        from.pop_back();
        return n;
    };
    QByteArray read;
    for (int e = 0; e < kEvents; ++e) {
        const int roll = mix == Mix::Presence ? 0 : int(rng() % 100);
        int n;
        if (roll < 20 && present.size() >= size_t(channel)) {
            n = take(present);
            absent.push_back(n);
            read += chatEvent(3, 0x10, nameOf(n), {});
        } else if (roll < 20) {
            n = take(absent);
            present.push_back(n);
            read += chatEvent(2, 0x10, nameOf(n), sampleStatstring(n));
        } else if (roll < 30) {
            n = present[rng() % present.size()];
            read += chatEvent(9, roll < 22 ? 0x12 : 0x10, nameOf(n), sampleStatstring(n));
        } else {
            n = present[rng() % present.size()];
            read += chatEvent(5, 0x10, nameOf(n),
                              QStringLiteral("message number %1 from the crowd").arg(e));
        }
        out.lookups.push_back(nameOf(n));
        if ((e + 1) % kPerRead == 0) {
            out.reads.push_back(read);
            read.clear();
        }
    }
    if (!read.isEmpty()) out.reads.push_back(read);
    return out;
}

const Stream& stream(int channel, Mix mix = Mix::Chat) {
    static std::map<std::pair<int, Mix>, Stream> made;
    auto it = made.find({channel, mix});
    if (it == made.end())
        it = made.emplace(std::pair{channel, mix}, makeStream(channel, mix)).first;
    return it->second;
}

// A fresh slot on screen, online, in the channel.
int enterChannel(const Stream& s) {
    SlotTable::reset();
    SlotTable::instance().IsLoaded = true;
    const int slot = SlotTable::instance().LoadProfile(QStringLiteral("Busy"));
    wsBNET(slot).simulateQuietConnection();
    wsBNLS(slot).simulateQuietConnection();
    Bots(slot).setOnline(true);
    Bots(slot).UniqueAccount = QStringLiteral("Busy");
    Bots(slot).Config.setAccount(QStringLiteral("Busy"));
    SlotTable::instance().SelectBot(slot);
    wsBNET(slot).simulateData(s.arrival);
    return slot;
}

void countEvents(benchmark::State& state, int slot) {
    const double events = double(kEvents) * double(state.iterations());
    state.counters["users_at_end"] = double(lvUsers(slot).count());
    state.counters["events/s"] = benchmark::Counter(events, benchmark::Counter::kIsRate);
    state.counters["us_each"] =
        benchmark::Counter(events, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void feed(benchmark::State& state, const Stream& s) {
    int slot = 0;
    for (auto _ : state) {
        state.PauseTiming();
        slot = enterChannel(s);
        state.ResumeTiming();
        for (const QByteArray& read : s.reads)
            wsBNET(slot).simulateData(read);
    }
    countEvents(state, slot);
}

void ChatEventsThroughTheSlot(benchmark::State& state) {
    feed(state, stream(1000));
}

// A page that offered the token and then only drains what it is sent.
std::unique_ptr<QTcpSocket> openPage(quint16 port, const QString& token) {
    auto socket = std::make_unique<QTcpSocket>();
    QTcpSocket* raw = socket.get();
    QObject::connect(raw, &QTcpSocket::readyRead, raw, [raw] {
        if (raw->property("open").toBool()) {
            raw->readAll();
            return;
        }
        const QByteArray head = raw->peek(4096);
        if (!head.contains("\r\n\r\n")) return;
        raw->read(head.indexOf("\r\n\r\n") + 4);
        raw->setProperty("open", true);
        const QByteArray hello = "{\"event\":\"hello\",\"token\":\"" + raw->property("token").toByteArray() + "\"}";
        raw->write(QByteArray("\x81") + char(0x80 | hello.size()) + QByteArray(4, '\0') + hello);
    });
    raw->setProperty("token", token.toLatin1());
    raw->connectToHost(QHostAddress::LocalHost, port);
    raw->waitForConnected(5000);
    raw->write("GET /socket HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: "
               "Upgrade\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: "
               "13\r\n\r\n");
    return socket;
}

// The pages' own reading happens in a process of their own, as a browser's
// would: the bench run again with --drain-pages PORT TOKEN COUNT.
int drainPages(const QStringList& args) {
    std::vector<std::unique_ptr<QTcpSocket>> pages;
    for (int i = 0; i < args.value(2).toInt(); ++i) {
        pages.push_back(openPage(quint16(args.value(0).toUInt()), args.value(1)));
        QObject::connect(pages.back().get(), &QTcpSocket::disconnected, [&pages] {
            if (std::none_of(pages.begin(), pages.end(), [](const auto& p) {
                    return p->state() == QAbstractSocket::ConnectedState;
                }))
                QCoreApplication::quit();
        });
    }
    return QCoreApplication::exec();
}

void ChatEventsWithPagesOpen(benchmark::State& state) {
    const Stream& s = stream(1000);
    const int pageCount = int(state.range(0));
    int slot = 0;
    for (auto _ : state) {
        state.PauseTiming();
        slot = enterChannel(s);
        QTcpServer probe;
        probe.listen(QHostAddress::LocalHost, 0);
        const quint16 port = probe.serverPort();
        probe.close();
        auto front = std::make_unique<WebFront>();
        front->start(port);
        QProcess pages;
        if (pageCount > 0)
            pages.start(QCoreApplication::applicationFilePath(),
                        {QStringLiteral("--drain-pages"), QString::number(port),
                         WebToken::Ensure(nullptr), QString::number(pageCount)});
        while (std::count_if(front->pages().begin(), front->pages().end(),
                             [](const WebPage* p) { return p->admitted(); }) < pageCount)
            QCoreApplication::processEvents();
        state.ResumeTiming();
        for (const QByteArray& read : s.reads) {
            wsBNET(slot).simulateData(read);
            QCoreApplication::processEvents();
        }
        state.PauseTiming();
        front.reset();
        pages.waitForFinished(10000);
        state.ResumeTiming();
    }
    countEvents(state, slot);
}

// The userbase's aliases and groups, written in one import: `entries` of
// each, five members each, from the names of the channel and from outside it.
void writeAliasesAndGroups(int entries) {
    RegistryWrapper& store = RegistryWrapper::instance();
    for (const char* tree : {"Aliases", "Groups"}) {
        QStringList names;
        store.EnumKeys(SettingsWrapper::RootKey() + QLatin1String(tree), names);
        for (const QString& name : names)
            if (!name.isEmpty())
                tree == QLatin1String("Aliases") ? (void)DeleteAlias(name)
                                                 : (void)DeleteGroup(name);
    }
    QString reg = QStringLiteral("REGEDIT4\r\n\r\n");
    const QString root = QStringLiteral("[HKEY_CURRENT_USER\\Software\\Corvantide4\\");
    for (int e = 0; e < entries; ++e) {
        reg += root + QStringLiteral(
                          "Groups\\Group%1]\r\n\"Color\"=dword:%2\r\n\"Prefix\"=\"G%1\"\r\n\r\n")
                          .arg(e)
                          .arg(0x102030 + e, 8, 16, QChar(u'0'));
        for (int m = 0; m < 5; ++m) {
            reg += root +
                   QStringLiteral("Groups\\Group%1\\%2]\r\n\r\n").arg(e).arg(nameOf(e * 7 + m * 3));
            reg += root + QStringLiteral("Aliases\\Alias%1\\%2]\r\n\r\n")
                              .arg(e)
                              .arg(nameOf(e * 5 + m * 11 + 1));
        }
    }
    store.ImportRegText(reg.toLatin1());
}

void ChatEventsWithAliasesAndGroups(benchmark::State& state) {
    writeAliasesAndGroups(int(state.range(0)));
    feed(state, stream(1000));
    writeAliasesAndGroups(0);
}

// The profile's mailbox with `letters` mails, to names in the channel and
// names that never come.
void writeMailbox(int letters) {
    const QString folder = GetProgramFolder() + QStringLiteral("/Mail");
    QDir().mkpath(folder);
    QFile file(folder + QStringLiteral("/Busy.ini"));
    if (letters == 0) {
        file.remove();
        return;
    }
    if (!file.open(QIODevice::WriteOnly)) return;
    for (int i = 0; i < letters; ++i)
        file.write(QStringLiteral("%1\tSender%2\t12:00:00|01/01/2026\tletter %2\r\n")
                       .arg(nameOf(i * 13 % 5000))
                       .arg(i)
                       .toLatin1());
}

void ChatEventsWithMailbox(benchmark::State& state) {
    writeMailbox(int(state.range(0)));
    feed(state, stream(1000));
    writeMailbox(0);
}

// Only joins and leaves, taking turns, in a channel of `users`.
void JoinAndLeave(benchmark::State& state) {
    feed(state, stream(int(state.range(0)), Mix::Presence));
}

// One look-up of each event's name, the channel as it was when the stream
// began.
template <typename Find>
void lookUpEachEventsName(benchmark::State& state, int channel, Find find) {
    const Stream& s = stream(channel);
    const int slot = enterChannel(s);
    const BotElement& bot = Bots(slot);
    for (auto _ : state) {
        int found = 0;
        for (const QString& name : s.lookups)
            found += find(bot, name) > 0;
        benchmark::DoNotOptimize(found);
    }
    state.counters["us_each"] =
        benchmark::Counter(double(kEvents) * double(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void UserFindThroughTheIndex(benchmark::State& state) {
    lookUpEachEventsName(
        state, int(state.range(0)),
        [](const BotElement& bot, const QString& name) { return bot.UserFind(name); });
}

// Both names in their plain form, lower-cased, compared user by user.
void UserFindByWalkingTheChannel(benchmark::State& state) {
    lookUpEachEventsName(state, 1000, [](const BotElement& bot, const QString& name) {
        const QString wanted = ConvertUsername(name, false, -1).toLower();
        for (size_t i = 0; i < bot.Users.size(); ++i) {
            if (bot.Users[i].UsernameFixed.compare(wanted, Qt::CaseInsensitive) == 0)
                return int(i) + 1;
        }
        return 0;
    });
}

} // namespace

BENCHMARK(ChatEventsThroughTheSlot)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(ChatEventsWithPagesOpen)
    ->ArgName("pages")
    ->Arg(0)
    ->Arg(4)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);
BENCHMARK(ChatEventsWithAliasesAndGroups)
    ->ArgName("entries")
    ->Arg(0)
    ->Arg(10)
    ->Arg(50)
    ->Arg(100)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);
BENCHMARK(ChatEventsWithMailbox)
    ->ArgName("letters")
    ->Arg(0)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);
BENCHMARK(JoinAndLeave)
    ->ArgName("users")
    ->Arg(100)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);
BENCHMARK(UserFindThroughTheIndex)
    ->ArgName("users")
    ->Arg(100)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(UserFindByWalkingTheChannel)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (app.arguments().value(1) == QLatin1String("--drain-pages"))
        return drainPages(app.arguments().mid(2));
    QTemporaryDir home;
    SetHomeFolder(home.path());
    SettingsWrapper& settings = SettingsWrapper::instance();
    settings.setFloodMode(0); // every event straight to its handler
    settings.setTimeStamp(true);
    benchmark::Initialize(&argc, argv);
    // Each figure against the same stream with nothing in the userbase, or
    // against the channel of 100: near 1 means the cost does not grow.
    RatioReporter reporter(
        "us_each",
        {{"aliases and groups 10 / 0", "ChatEventsWithAliasesAndGroups/entries:10",
          "ChatEventsWithAliasesAndGroups/entries:0"},
         {"aliases and groups 50 / 0", "ChatEventsWithAliasesAndGroups/entries:50",
          "ChatEventsWithAliasesAndGroups/entries:0"},
         {"aliases and groups 100 / 0", "ChatEventsWithAliasesAndGroups/entries:100",
          "ChatEventsWithAliasesAndGroups/entries:0"},
         {"aliases and groups 1000 / 0", "ChatEventsWithAliasesAndGroups/entries:1000",
          "ChatEventsWithAliasesAndGroups/entries:0"},
         {"mailbox 10 / 0", "ChatEventsWithMailbox/letters:10", "ChatEventsWithMailbox/letters:0"},
         {"mailbox 100 / 0", "ChatEventsWithMailbox/letters:100",
          "ChatEventsWithMailbox/letters:0"},
         {"mailbox 1000 / 0", "ChatEventsWithMailbox/letters:1000",
          "ChatEventsWithMailbox/letters:0"},
         {"mailbox 10000 / 0", "ChatEventsWithMailbox/letters:10000",
          "ChatEventsWithMailbox/letters:0"},
         {"4 web pages / none", "ChatEventsWithPagesOpen/pages:4", "ChatEventsWithPagesOpen/pages:0"},
         {"join and leave at 10000 users / at 100", "JoinAndLeave/users:10000",
          "JoinAndLeave/users:100"},
         {"user look-up at 10000 users / at 100", "UserFindThroughTheIndex/users:10000",
          "UserFindThroughTheIndex/users:100"}});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
