#include "sandbox/ResidentCrowd.h"

#include "platform/Cp1252.h"
#include "sandbox/ChatHub.h"
#include "sandbox/Products.h"

#include <algorithm>
#include <iterator>

namespace sandbox {
namespace {

// A resident answers the same client at most this often, so that two chatty programs
// can't keep each other busy.
constexpr qint64 kAnswerQuietMs = 30000;

const char* const kNameStarts[] = {"Tal", "Mor", "Bre", "Kas", "Dun", "Eli", "Fen", "Gar",  "Hal",
                                   "Ist", "Jor", "Kel", "Lys", "Nar", "Orr", "Pel", "Quin", "Rho",
                                   "Sel", "Tor", "Ulf", "Vex", "Wyn", "Yar", "Zan"};
const char* const kNameEnds[] = {"vik", "rane",  "dor", "wyn", "ara",   "oth",  "ric", "ella",
                                 "mir", "ander", "ix",  "ova", "ketch", "bald", "ine"};

const char* const kLines[] = {
    "anyone up for a game?",
    "brb, coffee",
    "gg last night, that was close",
    "does anyone remember the patch notes?",
    "hi all",
    "lag is terrible today",
    "who wants to 2v2?",
    "that map is so unbalanced",
    "lol",
    "I still think the old ladder was better",
    "back",
    "is the tournament still on this weekend?",
    "need one more for a 4v4",
    "my connection keeps dropping",
    "nice one",
    "who is hosting?",
    "that rush was brutal",
    "anyone seen the new maps?",
    "afk a sec",
    "gl hf",
    "wb",
    "the queue is slow tonight",
    "this channel is busy today",
    "how do you counter that build?",
    "one more and then sleep",
};
const char* const kEmotes[] = {
    "waves", "yawns", "stretches", "is looking for a team", "laughs", "shrugs", "cheers",
};
const char* const kRealms[] = {"USEast", "USWest", "Europe", "Asia"};
const char* const kCharacters[] = {"Aerith", "Brakka", "Cindra", "Dolgan", "Eskel",
                                   "Fiora",  "Grom",   "Hestia", "Ivor",   "Jessa"};
const char kWar3Races[] = {'H', 'O', 'N', 'U', 'R'};
const char kW3xpRaces[] = {'H', 'O', 'N', 'U', 'R', 'T'};
const char* const kClans[] = {"DNAB", "KCAP", "NOIL", "LCR", "WOLF"};

template <typename T, std::size_t N> const T& pick(QRandomGenerator& random, const T (&items)[N]) {
    return items[random.bounded(int(N))];
}

QString number(QRandomGenerator& random, int below) {
    return QString::number(random.bounded(below));
}

// Diablo II characters: realm, name and the 33 bytes of their appearance and standing.
QByteArray diabloStatstring(QRandomGenerator& random, const QByteArray& code,
                            const QString& character) {
    QByteArray data(33, char(0x80));         // no NUL may occur in a text field
    data[13] = char(1 + random.bounded(7));  // class
    data[25] = char(1 + random.bounded(99)); // level
    data[26] = char(0x80 | (code == "PX2D" ? 0x20 : 0) | (random.bounded(4) == 0 ? 0x04 : 0));
    data[27] = char(0x80 | random.bounded(4) << 3);   // title
    data[30] = char(random.bounded(2) ? 0xFF : 0x01); // ladder
    return code + pick(random, kRealms) + ',' + character.toLatin1() + ',' + data;
}

QString statstringFor(QRandomGenerator& random, const Product& product, const QString& character) {
    QByteArray code(product.code);
    std::reverse(code.begin(), code.end());
    const QString c = QString::fromLatin1(code);
    if (product.starNames()) return cp1252::decode(diabloStatstring(random, code, character));
    if (product.newLogon) {
        const bool expansion = product.keyCount == 2;
        const char race = expansion ? pick(random, kW3xpRaces) : pick(random, kWar3Races);
        const int tier = 1 + random.bounded(expansion ? 6 : 5);
        QString s = QStringLiteral("%1 %2%33W %4")
                        .arg(c)
                        .arg(tier)
                        .arg(QChar::fromLatin1(race))
                        .arg(1 + random.bounded(40));
        if (random.bounded(3) == 0) s += QLatin1Char(' ') + QLatin1String(pick(random, kClans));
        return s;
    }
    const QString ironman = product.keyLength == 16
                                ? number(random, 1500) + QLatin1Char(' ') + number(random, 300)
                                : QStringLiteral("0 0");
    return QStringLiteral("%1 %2 %3 %4 0 0 0 %5 %1")
        .arg(c, number(random, 2000), number(random, 500), number(random, 300), ironman);
}

} // namespace

ResidentCrowd::ResidentCrowd(ChatHub& hub, int count, double rate, const QString& channel,
                             quint32 seed, QObject* parent)
    : QObject(parent), m_hub(hub), m_rate(rate), m_channel(channel),
      m_random(seed ? QRandomGenerator(seed) : QRandomGenerator::securelySeeded()) {
    const auto products = allProducts();
    QSet<QString> taken;
    for (int i = 0; i < count; ++i) {
        auto r = std::make_unique<Resident>(
            [this](Resident& who, const QString& from, const QString& text) {
                answerWhisper(who, from, text);
            });
        QString name =
            QLatin1String(pick(m_random, kNameStarts)) + QLatin1String(pick(m_random, kNameEnds));
        while (taken.contains(name.toLower()))
            name = name.left(11) + QString::number(m_random.bounded(1000));
        taken.insert(name.toLower());
        r->account = name;
        r->product = products[m_random.bounded(int(products.size()))];
        if (r->product->starNames()) r->character = QLatin1String(pick(m_random, kCharacters));
        r->statstring = statstringFor(m_random, *r->product, r->character);
        r->ping = quint32(15 + m_random.bounded(400));
        if (m_random.bounded(10) == 0) r->flags |= userflag::NoUdp;
        m_residents.push_back(std::move(r));
    }
    m_timer.setInterval(std::max(1, int(1000 / rate)));
    connect(&m_timer, &QTimer::timeout, this, &ResidentCrowd::tick);
}

ResidentCrowd::~ResidentCrowd() {
    for (auto& r : m_residents)
        m_hub.exit(*r);
}

void ResidentCrowd::start() {
    for (auto& r : m_residents)
        comeBack(*r);
    m_clock.start();
    if (!m_paused) m_timer.start();
}

void ResidentCrowd::tick() {
    // Catch up with the rate, whatever the timer's grain; a long stall is not made good.
    const qint64 due = qint64(double(m_clock.elapsed()) * m_rate / 1000.0) - qint64(m_actions) -
                       qint64(m_skipped);
    for (qint64 i = 0; i < std::min<qint64>(due, 2000); ++i)
        act();
    if (due > 2000) m_skipped += quint64(due - 2000);
}

void ResidentCrowd::pause() {
    m_paused = true;
    m_timer.stop();
}

void ResidentCrowd::resume() {
    if (!m_paused) return;
    m_paused = false;
    if (!m_clock.isValid()) return;
    m_skipped = quint64(double(m_clock.elapsed()) * m_rate / 1000.0) - m_actions;
    m_timer.start();
}

void ResidentCrowd::comeBack(Resident& r) {
    r.online = true;
    m_hub.enter(r, r.account);
    m_hub.join(r, m_channel, ChatHub::JoinMode::Forced);
}

void ResidentCrowd::act() {
    ++m_actions;
    const qint64 now = m_clock.isValid() ? m_clock.elapsed() : 0;
    for (auto& r : m_residents) {
        if (!r->online && r->returnAtMs <= now) {
            comeBack(*r);
            return;
        }
    }
    Resident* r = pickOnline();
    if (!r) return;
    const int roll = m_random.bounded(100);
    if (roll < 60) {
        m_hub.talk(*r, pickLine());
    } else if (roll < 68) {
        m_hub.emote(*r, QLatin1String(pick(m_random, kEmotes)));
    } else if (roll < 78) {
        QList<ChatUser*> clients;
        for (ChatUser* u : m_hub.users())
            if (!dynamic_cast<Resident*>(u)) clients.append(u);
        if (clients.isEmpty())
            m_hub.talk(*r, pickLine());
        else
            m_hub.whisper(*r, clients[m_random.bounded(int(clients.size()))]->name(), pickLine());
    } else if (roll < 88) {
        m_hub.exit(*r);
        r->online = false;
        r->returnAtMs = now + qint64((10 + m_random.bounded(30)) * 1000 / m_rate);
    } else if (roll < 92) {
        // Rejoining hands the operator's flag to an heir, when it holds it.
        if ((r->flags & userflag::Operator) && r->channel && r->channel->size() > 1) {
            const auto& members = r->channel->members();
            ChatUser* heir = members[m_random.bounded(int(members.size()))];
            if (heir != r) r->channel->heir = heir->name();
        }
        m_hub.join(*r, m_channel, ChatHub::JoinMode::Forced);
    } else {
        r->away = !r->away;
        r->awayMessage = QStringLiteral("getting food");
    }
}

Resident* ResidentCrowd::pickOnline() {
    if (m_residents.empty()) return nullptr;
    for (int attempt = 0; attempt < 8; ++attempt) {
        Resident* r = m_residents[m_random.bounded(int(m_residents.size()))].get();
        if (r->online) return r;
    }
    const auto it = std::find_if(m_residents.begin(), m_residents.end(),
                                 [](const auto& r) { return r->online; });
    return it == m_residents.end() ? nullptr : it->get();
}

QString ResidentCrowd::pickLine() {
    return QLatin1String(pick(m_random, kLines));
}

void ResidentCrowd::answerWhisper(Resident& r, const QString& from, const QString& text) {
    ChatUser* sender = m_hub.find(from);
    if (!sender || dynamic_cast<Resident*>(sender)) return;
    const QString key = r.name() + QLatin1Char('|') + sender->name().toLower();
    const qint64 now = m_clock.isValid() ? m_clock.elapsed() : 0;
    if (const auto last = m_lastAnswer.constFind(key);
        last != m_lastAnswer.cend() && now - *last < kAnswerQuietMs)
        return;
    m_lastAnswer.insert(key, now);
    const QString answer = QStringLiteral("you said \"%1\"? %2").arg(text.left(80), pickLine());
    const QString to = sender->name();
    QTimer::singleShot(300 + m_random.bounded(900), this, [this, who = &r, to, answer] {
        if (who->online) m_hub.whisper(*who, to, answer);
    });
}

} // namespace sandbox
