#pragma once

class QWidget;

// Checks once for a newer release, on a thread of its own, and shows the announcement in a sheet
// on the window when there is one. Nothing is shown otherwise.
void startUpdateCheck(QWidget* window);
