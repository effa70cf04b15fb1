// The question asked for each target of an extraction that already exists: the entry on the
// disk and the entry from the image side by side, each with icon, size and date, and five
// answers, two of which hold for the rest of the job.
#pragma once

#include "CControlFactory.h"
#include "CTvgBaseDialog.h"

#include <QFileInfo>
#include <QFont>
#include <QImage>
#include <QString>

class CAlphaStatic;
class CGButton;
class CGStatic;
class COvDataItem;

// What the question is about: the item to be written and the target of the same name.
struct NotifyData {
    const COvDataItem* pItem = nullptr;
    QString path;
    QFileInfo findData;
};

class CConfirmFile : public CTvgBaseDialog {
    Q_OBJECT
public:
    // The end codes, which are also the buttons' ids.
    static constexpr int kIdReplace = 732;
    static constexpr int kIdSkip = 730;
    static constexpr int kIdReplaceAll = 3;
    static constexpr int kIdSkipAll = 5;
    static constexpr int kIdStop = 2;
    // Controls that show the two entries.
    static constexpr int kIdHeading = 705;
    static constexpr int kIdExplanation = 1084;
    static constexpr int kIdOldIcon = 1082;
    static constexpr int kIdOldText = 717;
    static constexpr int kIdNewLine = 1087;
    static constexpr int kIdNewIcon = 1083;
    static constexpr int kIdNewText = 728;

    explicit CConfirmFile(QWidget* pParent = nullptr);
    ~CConfirmFile() override;
    CConfirmFile(const CConfirmFile&) = delete;
    CConfirmFile& operator=(const CConfirmFile&) = delete;

    // Before exec; the record must outlive the dialog.
    void SetData(const NotifyData* pData) { m_pData = pData; }
    // The five answers, in their order on the dialog.
    CGButton* Button(int nId) const;
    CAlphaStatic* Text(int nId) const;

    // The line of size and date of an entry on the disk and of one from the image.
    static QString EntryText(const QFileInfo& info);
    static QString EntryText(const COvDataItem& item);

protected:
    bool OnInitDialog() override;
    bool OnCommand(int nId) override;
    void OnCancel() override;

private:
    void CreateTexts();
    void CreateIcons();
    void CreateButtons();
    void FillTexts();
    CAlphaStatic* MakeText(int nId, const QRect& rect, const QFont& font);
    CGStatic* MakeIcon(int nId, const QRect& rect, const QImage& picture);

    const NotifyData* m_pData = nullptr;
    double m_scale;
    CControlFactory m_factory;
    QFont m_headingFont;
    QFont m_textFont;
    CAlphaStatic* m_pHeading = nullptr;
    CAlphaStatic* m_pExplanation = nullptr;
    CAlphaStatic* m_pOldText = nullptr;
    CAlphaStatic* m_pNewLine = nullptr;
    CAlphaStatic* m_pNewText = nullptr;
    CGStatic* m_pPicture = nullptr;
    CGStatic* m_pOldIcon = nullptr;
    CGStatic* m_pNewIcon = nullptr;
    CGButton* m_apButtons[5] = {};
};
