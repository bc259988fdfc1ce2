#include "chat/UserElement.h"

#include "statistics/UserNames.h"

void UserElement::setUsername(const QString& name) {
    m_username = name;
    UsernameFixed = ConvertUsername(name, false, -1);
}
