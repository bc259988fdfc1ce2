// corvantide-fake-player: a stand-in media player on the session bus, for
// trying the music panel and the media commands where no real player runs.
// It plays a short list of songs, skips on Next and Previous, toggles on
// PlayPause and prints every command it is sent.
#include "media/FakeMprisPlayer.h"

#include <QCoreApplication>
#include <QTimer>
#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QString name = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("fakeplayer");
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (address.isEmpty()) {
        std::fprintf(stderr, "corvantide-fake-player: DBUS_SESSION_BUS_ADDRESS is not set\n");
        return 1;
    }
    FakeMprisPlayer player(address, name);
    if (!player.appear()) {
        std::fprintf(stderr,
                     "corvantide-fake-player: the name org.mpris.MediaPlayer2.%s is taken\n",
                     qPrintable(name));
        return 1;
    }
    const std::pair<const char*, const char*> songs[] = {
        {"Ostrelund", "Night Tide"}, {"Vell", "Harbour Lights"}, {"Kiran Moss", "Lanterns"}};
    const int count = int(std::size(songs));
    int song = 0;
    auto play = [&] {
        player.play(QString::fromUtf8(songs[song].first), QString::fromUtf8(songs[song].second));
        std::printf("playing %s - %s\n", songs[song].first, songs[song].second);
        std::fflush(stdout);
    };
    play();
    qsizetype seen = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        for (; seen < player.commands.size(); ++seen) {
            const QString& command = player.commands[seen];
            std::printf("command %s\n", qPrintable(command));
            std::fflush(stdout);
            if (command == u"Quit") QCoreApplication::quit();
            if (command != u"Next" && command != u"Previous") continue;
            song = (song + (command == u"Next" ? 1 : count - 1)) % count;
            play();
        }
    });
    watch.start(100);
    return app.exec();
}
