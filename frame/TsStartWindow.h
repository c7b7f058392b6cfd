#pragma once
/// \class TsStartWindow
/// The splash screen shown while an application starts. TsStartWindow builds it
/// and shows it at once; TsStartWindow::Instance() gives it until it goes, which
/// is when the main frame's timer 2 takes it down (TessmaMDIFrame), when its
/// owner is deleted, or when the application deletes it.

#include <QImage>
#include <QPoint>
#include <QWidget>

#include <string>
#include <vector>

/// The splash window: a picture with lines of text, without a title bar.
/// A large picture (at least 320 by 200) fills the window and the texts stand
/// at its lower left; a smaller one stands at the left of a plain panel of at
/// least 420 by 200, with the texts beside it, the first line larger and bold.
class TsSplashWindow : public QWidget
{
    Q_OBJECT

public:
    /// `textColour` is a COLORREF (0x00BBGGRR). Deleted with `owner`, if given.
    TsSplashWindow(const QImage& picture, std::vector<std::string> texts, unsigned long textColour,
                   QWidget* owner = nullptr);
    ~TsSplashWindow() override;

    const std::vector<std::string>& GetTexts() const { return mTexts; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool IsBackdrop() const;

    QImage mPicture;
    std::vector<std::string> mTexts;
    QColor mTextColour;
};

class TsStartWindow
{
public:
    /// Shows the splash with the picture resource `pictureId` ("PNG" in the
    /// current resource module; a missing picture leaves the panel plain) and
    /// `texts`, at `position` (its top-left corner on the screen), or centred on
    /// the primary screen when that is null. A splash that is still up is
    /// replaced.
    TsStartWindow(unsigned int pictureId, const std::vector<std::string>& texts, const QPoint* position = nullptr,
                  unsigned long textColour = 0x00000000, QWidget* owner = nullptr);
    /// The same with a picture at hand.
    TsStartWindow(const QImage& picture, const std::vector<std::string>& texts, const QPoint* position = nullptr,
                  unsigned long textColour = 0x00000000, QWidget* owner = nullptr);

    /// The splash on the screen, or null.
    static TsSplashWindow* Instance();

private:
    void Show(const QImage& picture, const std::vector<std::string>& texts, const QPoint* position,
              unsigned long textColour, QWidget* owner);
};
