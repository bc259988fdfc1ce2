#pragma once

#include <QString>
#include <QVariant>
#include <stdexcept>

// What a plug-in raised; its text is the error's description.
class PluginCallError : public std::runtime_error {
public:
    explicit PluginCallError(const QString& description)
        : std::runtime_error(description.toStdString()) {}
    QString description() const { return QString::fromStdString(what()); }
};

// A loaded plug-in, called late-bound by member name. A member the plug-in
// does not have is an error of that call, like any error it raises.
class PluginObject {
public:
    virtual ~PluginObject() = default;
    // Arguments passed by reference may be changed in place.
    virtual QVariant call(const QString& member, QVariantList& args) = 0;

    // It was stopped for good (it took too much memory): it takes no more
    // calls, and the host unloads it as soon as the call in progress is over.
    bool spent() const { return !m_stopped.isEmpty(); }
    // Why, in the words of an error of a call: "it used more than ...".
    const QString& stoppedBecause() const { return m_stopped; }

protected:
    void markSpent(const QString& because);

private:
    QString m_stopped;
};
