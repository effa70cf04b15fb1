// The open dialog of the image command: Qt's own file dialog, whose file-type list drops down
// wide enough for its longest entry, so that long lists of patterns are not cut.
#pragma once

#include <QFileDialog>

class CFileDialogEX : public QFileDialog {
    Q_OBJECT
public:
    // bOpen chooses an existing file, else a name to save under; filter in Qt's form.
    CFileDialogEX(bool bOpen, const QString& title, const QString& folder, const QString& filter,
                  QWidget* pParent = nullptr);

    // The drop-down width that fits every entry of the file-type list; 0 without one.
    int FileTypeDropWidth() const;

protected:
    void showEvent(QShowEvent* pEvent) override;

private:
    void WidenFileTypeList();
};
