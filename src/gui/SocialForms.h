#pragma once

class QWidget;

// The dialogs of profiles and clans, opened as their packets come: a looked-up
// profile, an invitation. Set up once by the main window, their parent.
void ConnectSocialForms(QWidget* window);
// "Lookup profile": asks for an account and looks it up on the active slot.
void LookupProfile(QWidget* window);
