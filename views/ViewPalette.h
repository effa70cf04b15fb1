// The colours of the browsing panes: white text on dark slate, the accent for the selection.
#pragma once

class QWidget;

void ApplyViewPalette(QWidget* pWidget);
