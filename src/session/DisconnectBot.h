#pragma once

// Ends a slot's connection at the user's wish: no try again follows until the
// user connects it (the Disconnect menu, the terminal's disconnect).
void DisconnectBot(int Index);
