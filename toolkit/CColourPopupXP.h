#pragma once
/// \class CColourPopupXP
/// The borderless window that CColourPickerXP drops down. It takes the mouse and
/// the keyboard while it is open, tells its picker of the colour under the
/// pointer and of the end of the selection, and deletes itself when it closes.

#include <KORVAutlwin/toolkit/ColourPopupLayout.h>
#include <KORVAutlwin/toolkit/ColourTable.h>

#include <QWidget>

#include <memory>
#include <string>

class CColourPickerXP;

class CColourPopupXP : public QWidget
{
    Q_OBJECT
public:
    /// Opens below `button` (global coordinates), kept on the screen, with the
    /// current index at the box of `colour`. Empty texts leave their rows out;
    /// `regSection` names the section of the application's key for the custom colours.
    CColourPopupXP(const QRect& button, COLORREF colour, CColourPickerXP* picker, const std::string& defaultText,
                   const std::string& customText, const std::string& regSection);
    ~CColourPopupXP() override;

    int GetCurrentIndex() const { return mCurrentIndex; }
    const ColourPopupLayout& GetLayout() const { return *mLayout; }
    /// True while the colour dialog of the custom row is open.
    bool IsColourDialogOpen() const { return mColourDialogOpen; }

    /// Ends with `message`: 2029 keeps the initial colour; 2028 on the custom
    /// row asks the colour dialog first. Tells the picker and closes.
    void EndSelection(int message);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool event(QEvent* event) override;

private:
    void ChangeSelection(int index);
    COLORREF ColourAt(int index) const;
    std::string NameAt(int index) const;
    QRect ScreenArea(const QRect& button) const;

    std::unique_ptr<ColourPopupLayout> mLayout;
    int mCurrentIndex = ColourTable::eNoIndex;
    int mChosenIndex = ColourTable::eNoIndex;
    COLORREF mInitialColour;
    COLORREF mChosenColour;
    CColourPickerXP* mPicker;
    std::string mDefaultText;
    std::string mCustomText;
    std::string mRegSection;
    bool mColourDialogOpen = false;
    bool mEnded = false;
};
