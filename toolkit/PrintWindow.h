#pragma once
// Printing a window as a picture: the window is copied into a bitmap, and the
// bitmap goes onto the page below the suite's footer line and the caller's texts.

#include <QImage>

class PrintDC;
class QWidget;

/// How PrintDIB fits the picture into the page below `top`.
enum EPrintDIBMode : unsigned short
{
    ePrintBestFit = 1, // as large as fits, keeping the picture's proportions
    ePrintStretch = 2, // the whole area
    ePrintScale = 3    // xScale by yScale dots per inch for each 96 pixels, shrunk to fit if larger
};

/// PrintDIB's results.
enum EPrintDIBResult : unsigned short
{
    ePrintDIBOk = 0,
    ePrintDIBCannotLock = 3,
    ePrintDIBDrawFailed = 15,
    ePrintDIBNoBitmap = 20
};

/// The picture of `window` as it shows on screen; a null image without a window.
QImage CopyWindowToDIB(const QWidget* window);

/// Shows a print dialog (flags 0x14000C) and, on OK, prints `window` once per
/// copy: a page with the footer line (MakePrintFooter) at the top left, `text1`
/// and `text2` (either may be null) centred below it, and the window's picture
/// below them in 10-point "Arial". Nothing happens when the dialog is cancelled.
void PrintWindow(const QWidget* window, const char* text1, const char* text2);

/// Draws `dib` on the open page of `dc`, in the printable area below `top`,
/// fitted by `mode`, and finishes the page (NEWFRAME). The device never
/// bands here, so the picture goes in one piece. 0 on success, 20 without a
/// picture, 3 when it cannot be read, 15 when drawing or finishing fails.
unsigned short PrintDIB(const QImage* dib, unsigned short mode, unsigned short xScale, unsigned short yScale,
                        PrintDC* dc, unsigned short top);
