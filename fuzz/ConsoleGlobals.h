// The console's globals as at load, for a program that has the console linked in and starts it more than once.
#pragma once

void RestoreConsoleGlobals();
