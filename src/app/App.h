#pragma once

// Opens the main window and runs the event loop.
int runApp(int argc, char** argv);
