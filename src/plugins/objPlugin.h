#pragma once

#include <QObject>
#include <QVariantList>

class objCache;
class objConfiguration;
class objMusic;

// What the script and plug-ins are given: writing to a chat view, queueing a
// line, and the three objects below.
class objPlugin : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject* Cache READ Cache CONSTANT)
    Q_PROPERTY(QObject* Configuration READ Configuration CONSTANT)
    Q_PROPERTY(QObject* Music READ Music CONSTANT)
public:
    explicit objPlugin(QObject* parent = nullptr);

    // The slot now shown.
    Q_INVOKABLE int BotIndex() const;
    // One line in the slot's chat view from pairs of colour and text; colour
    // 0 is white, and an odd last element is not a pair.
    Q_INVOKABLE void AddText(int Index, const QVariantList& pairs);
    // Queues Text for the slot when it is online; drops it otherwise.
    Q_INVOKABLE void AddQueue(int Index, const QString& Text);

    // Each is made on first use.
    QObject* Cache();
    QObject* Configuration();
    QObject* Music();

private:
    objCache* m_cache = nullptr;
    objConfiguration* m_configuration = nullptr;
    objMusic* m_music = nullptr;
};
