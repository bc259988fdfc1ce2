#pragma once

// Brings the user's JavaScript to life: the script of the settings folder and
// the plug-ins of the program's Plugins folder.

// Makes PluginHost able to start plug-ins: Plugins/<Name>.js, each in an
// engine of its own, or else Plugins/<Name>.so with the C interface.
void InstallPluginLoader();

// Creates Script.txt in the settings folder when it is missing, runs it with
// `Corvan` installed, then its Event_Startup. A script that does not run, or
// lacks or fails Event_Startup, gets red console lines; what ran stays loaded.
// An empty file is no script and gets no line.
void LoadScript();
