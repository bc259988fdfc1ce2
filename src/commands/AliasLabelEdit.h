#pragma once

#include <QString>

// Renaming a user in place in a slot's user list: what is typed becomes the
// user's alias. The edit says what it is about when it starts, and on its end
// takes the user out of the old alias and into the new one, with a line in
// the slot's chat view for each change.
class AliasLabelEdit {
public:
    // The edit of the item with this tag (the raw name) and shown text starts.
    void begin(int slot, const QString& tag, const QString& text);
    // The edit ends with the new text. False when the text is refused and the
    // edit is to be cancelled; true otherwise, the change made and the slot on
    // screen refreshed.
    bool finish(const QString& text);

    bool active() const { return m_active; }

private:
    void join(const QString& alias);
    void say(const QString& line) const;

    bool m_active = false;
    int m_slot = 0;
    QString m_user;
    QString m_oldAlias;
    bool m_newAlias = true;
};
