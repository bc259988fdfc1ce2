#pragma once

#include <QString>

// One stored mail. ID is its number among the recipient's mails in the file,
// from 1: the number a recipient gives to "!read".
struct MailRecord {
    QString To;
    QString From;
    QString Message;
    QString Date; // time "|" date, as the local clock wrote them
    qint32 ID = 0;
};
