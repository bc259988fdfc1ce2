#pragma once

class QCoreApplication;

// SIGTERM and SIGINT end the event loop rather than the process, so that the
// program's own way out runs: logs saved, temporary files removed.
void QuitOnTermination(QCoreApplication& app);
