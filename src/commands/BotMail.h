#pragma once

#include "commands/MailRecord.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QTime>

// Mail that users leave for someone who is not there. Each profile keeps one
// file, Mail/<Account>.ini in the program folder, named after its Account
// setting, so profiles of one account share their mail. A line is one mail:
// To, From, time "|" date, message, divided by TABs. Reading a mail deletes it.
//
// `User` below is the plain name (ConvertUsername(name, False, -1)); names
// compare without regard to case.

// Stores a mail from the bot's own logged-on name, creating folder and file,
// both private to the user. False, with the cause, when it was not stored.
bool AddMail(int Index, const QString& To, const QString& Message, QString* cause = nullptr);
// The user's mails in file order, numbered from 1; false when there are none.
bool ReadMail(int Index, const QString& User, QList<MailRecord>& Mails);
// A quick test on the raw file: whether a line starts with the name. A
// shorter name also hits mail for a longer one that starts with it, so
// callers confirm with ReadMail.
bool HasMail(int Index, const QString& User);
// Removes the user's mail of that number, or all of them for -1, and
// rewrites the file, dropping lines that are no mail. True when a mail went;
// false, with the cause, when the file could not be rewritten.
bool DeleteMail(int Index, const QString& User, int Number, QString* cause = nullptr);

// When a user joins: a whisper that mail is waiting, queued each time until
// it is read. `Username` is the name as the server gave it.
void NotifyMailOnJoin(int Index, const QString& Username);
// Channel talk "!readall" or "!read N", in any case: whispers the mail and
// deletes it. Returns true when the line had the form of either request,
// whether or not mail went out (a number without a mail is met with silence);
// false for any other line, which the caller handles on.
bool AnswerMailRequest(int Index, const QString& Username, const QString& Text);

// The mail file of the profile, whether or not it exists.
QString MailFile(int Index);
// The two halves of the stored date, in the system's formats; a mail from
// today is shown with its time alone.
QString MailTimeText(const QTime& time);
QString MailDateText(const QDate& date);
