#pragma once

#include <QObject>
#include <QVariant>

// A loaded profile's settings as scripts read and change them. A change is
// stored at once and seen by the next read; a running connection keeps what
// it has. A slot without a profile gets a red console line, an empty answer
// and no change.
class objConfiguration : public QObject {
    Q_OBJECT
public:
    explicit objConfiguration(QObject* parent = nullptr) : QObject(parent) {}

    Q_INVOKABLE QVariant GetDatabase(int BotIndex) const {
        return get(QStringLiteral("Database"), BotIndex);
    }
    Q_INVOKABLE void SetDatabase(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("Database"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetBnetServer(int BotIndex) const {
        return get(QStringLiteral("BnetServer"), BotIndex);
    }
    Q_INVOKABLE void SetBnetServer(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("BnetServer"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetBnlsServer(int BotIndex) const {
        return get(QStringLiteral("BnlsServer"), BotIndex);
    }
    Q_INVOKABLE void SetBnlsServer(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("BnlsServer"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetCdkey(int BotIndex) const {
        return get(QStringLiteral("Cdkey"), BotIndex);
    }
    Q_INVOKABLE void SetCdkey(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("Cdkey"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetCdkeyEx(int BotIndex) const {
        return get(QStringLiteral("CdkeyEx"), BotIndex);
    }
    Q_INVOKABLE void SetCdkeyEx(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("CdkeyEx"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetCdkeyOwner(int BotIndex) const {
        return get(QStringLiteral("CdkeyOwner"), BotIndex);
    }
    Q_INVOKABLE void SetCdkeyOwner(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("CdkeyOwner"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetChannel(int BotIndex) const {
        return get(QStringLiteral("Channel"), BotIndex);
    }
    Q_INVOKABLE void SetChannel(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("Channel"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetEmail(int BotIndex) const {
        return get(QStringLiteral("Email"), BotIndex);
    }
    Q_INVOKABLE void SetEmail(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("Email"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetProductID(int BotIndex) const {
        return get(QStringLiteral("ProductID"), BotIndex);
    }
    Q_INVOKABLE void SetProductID(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("ProductID"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetPassword(int BotIndex) const {
        return get(QStringLiteral("Password"), BotIndex);
    }
    Q_INVOKABLE void SetPassword(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("Password"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetPingSpoof(int BotIndex) const {
        return get(QStringLiteral("PingSpoof"), BotIndex);
    }
    Q_INVOKABLE void SetPingSpoof(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("PingSpoof"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetTrigger(int BotIndex) const {
        return get(QStringLiteral("Trigger"), BotIndex);
    }
    Q_INVOKABLE void SetTrigger(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("Trigger"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetUsername(int BotIndex) const {
        return get(QStringLiteral("Username"), BotIndex);
    }
    Q_INVOKABLE void SetUsername(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("Username"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetVerbyte(int BotIndex) const {
        return get(QStringLiteral("Verbyte"), BotIndex);
    }
    Q_INVOKABLE void SetVerbyte(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("Verbyte"), BotIndex, Value);
    }
    Q_INVOKABLE QVariant GetUDP(int BotIndex) const { return get(QStringLiteral("UDP"), BotIndex); }
    Q_INVOKABLE void SetUDP(int BotIndex, const QVariant& Value) {
        set(QStringLiteral("UDP"), BotIndex, Value);
    }

private:
    QVariant get(const QString& setting, int BotIndex) const;
    void set(const QString& setting, int BotIndex, const QVariant& Value);
};
