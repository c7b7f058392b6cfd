#include <KORVAutlwin/toolkit/PrintWindow.h>

#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/toolkit/PrintDC.h>
#include <KORVAutlwin/toolkit/PrintFooter.h>
#include <KORVAutlwin/toolkit/TsPrintDialog.h>

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QPrinter>
#include <QWidget>

#include <algorithm>
#include <string>

namespace {

constexpr unsigned long kWindowPrintFlags = 0x14000C;
constexpr double kScreenDpi = 96.0;

QRect FitInto(const QSize& picture, const QRect& area, unsigned short mode, unsigned short xScale,
              unsigned short yScale)
{
    QSize size = area.size();
    if (mode == ePrintBestFit) {
        size = picture.scaled(area.size(), Qt::KeepAspectRatio);
    } else if (mode == ePrintScale) {
        size = QSize(static_cast<int>(picture.width() * xScale / kScreenDpi),
                     static_cast<int>(picture.height() * yScale / kScreenDpi));
        if (size.width() > area.width() || size.height() > area.height())
            size = size.scaled(area.size(), Qt::KeepAspectRatio);
    }
    return QRect(area.topLeft(), size);
}

} // namespace

QImage CopyWindowToDIB(const QWidget* window)
{
    if (!window)
        return {};
    // Grabbing only paints the window into a picture; the window stays as it is.
    return const_cast<QWidget*>(window)->grab().toImage();
}

unsigned short PrintDIB(const QImage* dib, unsigned short mode, unsigned short xScale, unsigned short yScale,
                        PrintDC* dc, unsigned short top)
{
    if (!dib || dib->isNull())
        return ePrintDIBNoBitmap;
    const QImage picture = dib->convertToFormat(QImage::Format_RGB32);
    if (picture.isNull())
        return ePrintDIBCannotLock;
    if (!dc)
        return ePrintDIBDrawFailed;

    const int width = dc->GetDeviceCaps(PrintDC::HORZRES);
    const int height = dc->GetDeviceCaps(PrintDC::VERTRES);
    const QRect area(0, top, width, std::max(0, height - top));
    const QRect target = FitInto(picture.size(), area, mode, xScale, yScale);

    // Devices here never band: the picture goes in one piece.
    if (dc->StretchDIBits(target, picture) == 0 || dc->Escape(PrintDC::NEWFRAME, 0, nullptr) <= 0)
        return ePrintDIBDrawFailed;
    return ePrintDIBOk;
}

void PrintWindow(const QWidget* window, const char* text1, const char* text2)
{
    WinApp* app = WinApp::GetApp();
    TsPrintDialog dialog(false, kWindowPrintFlags, app ? app->GetMainWnd() : nullptr);
    if (app)
        app->EnableModeless(false);
    const int answer = dialog.DoModal();
    if (app)
        app->EnableModeless(true);
    if (answer != TsPrintDialog::IDOK)
        return;

    const int copies = std::max(1, dialog.GetData().nCopies);
    std::unique_ptr<PrintDC> dc = dialog.TakeDC();
    if (!dc)
        return;
    const int width = dc->GetDeviceCaps(PrintDC::HORZRES);
    const int dpiX = dc->GetDeviceCaps(PrintDC::LOGPIXELSX);
    const int dpiY = dc->GetDeviceCaps(PrintDC::LOGPIXELSY);
    const std::string name = text1 && *text1 ? text1 : "Window";
    if (dc->StartDoc(name.c_str()) <= 0)
        return;

    QPainter& painter = dc->GetPainter();
    // On the printer's own device, so that 10 points are 10 points on paper.
    painter.setFont(QFont(QStringLiteral("Arial"), 10));
    const QImage picture = CopyWindowToDIB(window);
    for (int copy = 0; copy < copies; ++copy) {
        if (dc->StartPage() <= 0)
            break;
        const QFontMetrics metrics(painter.font(), &dc->GetPrinter());
        const int line = metrics.lineSpacing();
        int y = 0;
        painter.drawText(QRect(0, y, width, line), Qt::AlignLeft | Qt::AlignTop,
                         QString::fromStdString(MakePrintFooter(nullptr)));
        for (const char* text : {text1, text2}) {
            if (!text || !*text)
                continue;
            y += line;
            painter.drawText(QRect(0, y, width, line), Qt::AlignHCenter | Qt::AlignTop, QString::fromUtf8(text));
        }
        y += 2 * line;
        PrintDIB(&picture, ePrintScale, static_cast<unsigned short>(dpiX), static_cast<unsigned short>(dpiY),
                 dc.get(), static_cast<unsigned short>(y));
        dc->EndPage();
    }
    dc->EndDoc();
}
