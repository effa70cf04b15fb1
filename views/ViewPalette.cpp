#include "ViewPalette.h"

#include <QPalette>
#include <QWidget>

namespace {

constexpr QRgb kSlate = qRgb(47, 50, 54);
constexpr QRgb kSlateAlternate = qRgb(53, 56, 61);
constexpr QRgb kHeading = qRgb(74, 78, 82);
constexpr QRgb kText = qRgb(255, 255, 255);
constexpr QRgb kDisabledText = qRgb(0xD6, 0xD6, 0xD6);
constexpr QRgb kSelection = qRgb(29, 114, 110);

} // namespace

void ApplyViewPalette(QWidget* pWidget) {
    QPalette palette = pWidget->palette();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Base, kSlate);
        palette.setColor(group, QPalette::AlternateBase, kSlateAlternate);
        palette.setColor(group, QPalette::Window, kSlate);
        palette.setColor(group, QPalette::Button, kHeading);
        palette.setColor(group, QPalette::Text, kText);
        palette.setColor(group, QPalette::WindowText, kText);
        palette.setColor(group, QPalette::ButtonText, kText);
        palette.setColor(group, QPalette::Highlight, kSelection);
        palette.setColor(group, QPalette::HighlightedText, kText);
    }
    palette.setColor(QPalette::Disabled, QPalette::Base, kSlate);
    palette.setColor(QPalette::Disabled, QPalette::Text, kDisabledText);
    pWidget->setPalette(palette);
    pWidget->setAutoFillBackground(true);
}
