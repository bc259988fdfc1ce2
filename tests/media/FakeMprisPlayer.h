#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariantMap>

// A media player on a bus, as the MPRIS 2 interfaces show one: it holds a
// name, answers for its properties, tells its changes, and notes the
// commands it is sent. One that does not answer never replies at all.
class FakeMprisPlayer : public QDBusVirtualObject {
public:
    enum class Answers { Yes, Never };
    FakeMprisPlayer(const QString& address, const QString& name, Answers answers = Answers::Yes);
    ~FakeMprisPlayer() override;

    bool appear();
    void leave();
    // Plays a new song and says so on the bus.
    void play(const QString& artist, const QString& title);

    // The methods of the player's interfaces it was sent, in order.
    QStringList commands;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QVariantMap playerProperties() const;
    void tell(const QVariantMap& changed);

    QDBusConnection m_bus;
    QString m_name;
    Answers m_answers;
    QString m_status = QStringLiteral("Stopped");
    QVariantMap m_metadata;
};
