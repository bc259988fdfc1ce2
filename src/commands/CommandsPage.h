#pragma once

#include <QString>

// The list of bot commands the user reads (Help > Commands, `corvantide
// commands`): every command word with the least rank that may use it, made
// from the command tables themselves so that it never disagrees with them.
namespace CommandsPage {

QString Text();
QString Html();
// Writes the page into the program's folder and gives its path; empty, with
// the cause, when the file could not be written.
QString WriteHtml(QString* cause);

} // namespace CommandsPage
