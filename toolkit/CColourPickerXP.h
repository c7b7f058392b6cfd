#pragma once
/// \class CColourPickerXP
/// A button that shows a colour and drops down CColourPopupXP on a click: a
/// grid of named colours, an "Automatic" row and a "More Colors..." row that
/// opens the colour dialog. Two looks: a swatch with an arrow, or a combo box
/// with the colour's name. The parent learns of everything through Notice:
/// 2025 selection changed, 2026 dropped down, 2027 closed, 2028 chosen, 2029
/// ended without a choice; the colour travels with it.

#include <KORVAutlwin/toolkit/ColourTable.h>

#include <QPushButton>

#include <string>

class CColourPickerXP : public QPushButton
{
    Q_OBJECT
public:
    explicit CColourPickerXP(QWidget* parent = nullptr);
    ~CColourPickerXP() override;

    /// The colour; ColourTable::kAutomaticColour (0xFF000000) means automatic.
    virtual COLORREF GetColor();
    /// With `translate` non-zero and the colour automatic, the default colour.
    virtual COLORREF GetColor(int translate);
    virtual void SetColor(COLORREF colour);
    /// What automatic means; the application workspace colour at first.
    virtual COLORREF GetDefaultColor();
    virtual void SetDefaultColor(COLORREF colour);
    /// The bottom row of the popup; empty leaves the row out.
    virtual void SetCustomText(const char* text);
    /// The top row of the popup; empty leaves the row out.
    virtual void SetDefaultText(const char* text);
    const std::string& GetDefaultText() const { return mDefaultText; }
    /// The section of the application's registry key that keeps the custom colours.
    virtual void SetRegSection(const char* section);
    /// With tracking on, the button shows the colour under the pointer while the popup is open.
    virtual void SetTrackSelection(int track);
    virtual int GetTrackSelection();
    /// 0 a swatch with an arrow; 1 the combo look, with the height of the font plus 8.
    virtual void SetStyle(int style);
    virtual int GetStyle();
    /// The three channel labels, padded with blanks to three characters.
    virtual void SetRGBText(const char* text);
    const std::string& GetRGBText() const { return mRGBText; }
    /// Adds the RGB values to a named colour's text.
    virtual void SetAlwaysRGB(int always);
    virtual int GetAlwaysRGB();
    /// Repaints the arrow hot (pointer over the button) or cold.
    virtual void DrawHotArrow(int hot);

    /// The section used by every picker that has none of its own.
    static void SetRegSectionStatic(const char* section);
    /// See ColourTable::SetColoursName.
    static void SetColoursName(unsigned int firstStringId);

    /// The text the combo look shows for the current colour.
    std::string GetColourText() const;
    bool IsPopupActive() const { return mPopupActive; }

    /// The popup's notices (2025, 2028, 2029) with the colour.
    void OnPopupNotice(int message, COLORREF colour);

signals:
    /// To the parent: `message` 2025 to 2029, with the colour (2026 and 2027 carry the current one).
    void Notice(int message, unsigned long colour);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    QSize sizeHint() const override;

private:
    void OnClicked();
    void DrawItem(QPainter& painter);

    COLORREF mColour = ColourTable::kAutomaticColour;
    COLORREF mDefaultColour;
    std::string mDefaultText;
    std::string mCustomText;
    bool mPopupActive = false;
    bool mTrackSelection = false;
    bool mStyle = false;
    bool mAlwaysRGB = false;
    std::string mRGBText = "RGB";
    std::string mRegSection;
    bool mHot = false;

    static std::string msRegSection;
};
