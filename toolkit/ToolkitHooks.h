// What the settings layer leaves to a program with a screen: measuring text against a font, the
// screen's DPI, and telling the user through a message box. A program with widgets installs
// them once, after its QApplication exists.
#pragma once

class QWidget;

void InstallToolkitHooks();
// Chooses the icon theme once, before anything asks Qt for a themed icon: Qt's loader keeps the
// theme it first looked in. The desktop's theme where there is one; without a desktop session
// the fallback that Debian ships, so that folders and file types still have their icons.
void ChooseIconTheme();
// The window whose font measures text that names no font of its own; the application's font
// until one is named.
void SetMainWindowForText(QWidget* pWindow);
// That window, or null; what a dialog without a parent belongs to.
QWidget* MainWindow();
// The primary screen's DPI in device pixels: Qt's logical DPI times its device pixel ratio, so
// that QT_SCALE_FACTOR and a high-DPI screen both count. 96 without a screen.
double ScreenDeviceDpi();
