#pragma once

#include <QDate>
#include <QString>

// The chat of each profile is kept on disk as a copy of its view, taken when
// the program closes: one text file per profile and day under Logs/ of the
// settings folder, appended to by each save.

// "<settings folder>Logs/<profile> ~ dd-mm-yy.txt", the profile's name made
// safe for a file name.
QString LogFileName(const QString& profile, const QDate& day);
// With the setting Logging on, appends the text of every profile's chat view
// to that profile's log of today. Views that are empty leave no file.
void SaveLogFiles();
