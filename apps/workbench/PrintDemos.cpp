#include "PrintDemos.h"

#include "DemoMenus.h"

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/toolkit/MissingDataMap.h>
#include <KORVAutlwin/toolkit/PrintDC.h>
#include <KORVAutlwin/toolkit/PrintFooter.h>
#include <KORVAutlwin/toolkit/PrintOut.h>
#include <KORVAutlwin/toolkit/PrintWindow.h>
#include <KORVAutlwin/toolkit/TSPrinter.h>

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QVBoxLayout>

#include <algorithm>
#include <list>
#include <memory>
#include <vector>

namespace {

// Where a printout goes as a PDF file: the documents folder, named after the window.
QString PdfFileFor(const QString& title)
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (folder.isEmpty() || !QDir().mkpath(folder))
        folder = QDir::homePath();
    QString name = title;
    name.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9 _-]")), QStringLiteral("_"));
    return QDir(folder).filePath((name.isEmpty() ? QStringLiteral("Window") : name) + QStringLiteral(".pdf"));
}

void ToPdf(QPrinter& printer, const QString& file)
{
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(file);
}

// One page: the footer line with the window's title, and the window's picture below.
class WindowPrintOut : public PrintOut
{
public:
    explicit WindowPrintOut(const QWidget* window)
        : mPicture(CopyWindowToDIB(window)), mTitle(window->windowTitle().toStdString())
    {
    }

    std::string GetDocumentName() const override { return mTitle; }
    QPageLayout::Orientation GetOrientation() const override
    {
        return mPicture.width() > mPicture.height() ? QPageLayout::Landscape : QPageLayout::Portrait;
    }
    int GetFirstPage() const override { return 1; }
    int GetLastPage() const override { return 1; }
    void BeginPrinting(PrintDC& dc, int width, int height) override
    {
        mPage = QRect(0, 0, width, height);
        mDpiX = dc.GetDeviceCaps(PrintDC::LOGPIXELSX);
        mDpiY = dc.GetDeviceCaps(PrintDC::LOGPIXELSY);
    }
    bool HasPage(int page) const override { return page == 1; }
    QRect GetPageRect(int) const override { return mPage; }
    void PrintPage(PrintDC& dc, int, const QRect& rect) override
    {
        QPainter& painter = dc.GetPainter();
        painter.setFont(QFont(QStringLiteral("Arial"), 10));
        const int line = QFontMetrics(painter.font(), &dc.GetPrinter()).lineSpacing();
        painter.drawText(QRect(rect.left(), rect.top(), rect.width(), line), Qt::AlignLeft,
                         QString::fromStdString(MakePrintFooter(mTitle.c_str())));
        PrintDIB(&mPicture, ePrintScale, static_cast<unsigned short>(mDpiX), static_cast<unsigned short>(mDpiY), &dc,
                 static_cast<unsigned short>(rect.top() + 2 * line));
    }
    void EndCopy() override {}
    void EndPrinting() override {}

private:
    QImage mPicture;
    std::string mTitle;
    QRect mPage;
    int mDpiX = 96;
    int mDpiY = 96;
};

// A table of 60 observations and 24 variables with the gaps real data has:
// a sensor that failed for a while, a variable measured only later, and
// scattered single values.
class MissingDataDocument : public QWidget
{
public:
    MissingDataDocument()
    {
        constexpr int kRows = 60;
        constexpr int kColumns = 24;
        QRandomGenerator random(7);
        int missingCount = 0;
        for (int row = 1; row <= kRows; ++row)
            for (int column = 1; column <= kColumns; ++column) {
                const bool failedSensor = column == 5 && row >= 18 && row <= 31;
                const bool measuredLater = column == 17 && row <= 12;
                const bool scattered = random.bounded(100) < 4;
                mCells.emplace_back(column, row);
                mMissing.push_back(failedSensor || measuredLater || scattered);
                missingCount += mMissing.back();
            }

        auto* layout = new QVBoxLayout(this);
        auto* map = new MissingDataMap(this);
        map->SetData(kRows, kColumns, &mCells, &mMissing);
        map->setMinimumSize(240, 240);
        layout->addWidget(map, 1);
        auto* legend = new QLabel(
            tr("%1 observations (rows) by %2 variables (columns): green cells are present, pink ones missing "
               "(%3 of %4, %5 %).")
                .arg(kRows)
                .arg(kColumns)
                .arg(missingCount)
                .arg(kRows * kColumns)
                .arg(100.0 * missingCount / (kRows * kColumns), 0, 'f', 1),
            this);
        legend->setWordWrap(true);
        layout->addWidget(legend);
        setWindowTitle(tr("Missing data"));
    }

private:
    // The map only points at these: they live as long as it does.
    std::list<QPoint> mCells;
    std::vector<bool> mMissing;
};

// Where no printer is installed, the print dialog starts on a PDF file; true then.
bool PrintToPdfWithoutPrinters(const QString& file)
{
    if (!QPrinterInfo::availablePrinterNames().isEmpty())
        return false;
    TsPrintDialog::SetDefaultSetup([file](QPrinter& printer) { ToPdf(printer, file); });
    return true;
}

QString Described(const QFileInfo& before, const QString& file)
{
    const QFileInfo after(file);
    if (after.exists() && (!before.exists() || after.lastModified() != before.lastModified()))
        return QObject::tr("Printed to %1").arg(file);
    return QObject::tr("Nothing printed");
}

} // namespace

void AddPrintDemos(TessmaMDIFrame& frame)
{
    QMenu* file = MenuOf(frame, QObject::tr("&File"));
    QAction* exit = file->actions().isEmpty() ? nullptr : file->actions().constLast();
    QAction* print = frame.AddCommand(file, eDemoPrintWindow, QObject::tr("&Print..."));
    QAction* toPdf = frame.AddCommand(file, eDemoPrintToPdf, QObject::tr("Print to P&DF"));
    QAction* setup = frame.AddCommand(file, eDemoPrinterSetup, QObject::tr("Page set&up..."));
    if (exit) {
        for (QAction* action : {print, toPdf, setup}) {
            file->removeAction(action);
            file->insertAction(exit, action);
        }
        file->insertSeparator(exit);
    }

    QMenu* toolkit = SubmenuOf(frame, ControlsMenu(), QObject::tr("&Toolkit"));
    frame.AddCommand(toolkit, eDemoMissingDataMap, QObject::tr("&Missing data map"));

    TessmaMDIFrame* target = &frame;
    // One printer for the session, so that its settings carry from one job to the next.
    auto printer = std::make_shared<TSPrinter>();
    auto activeWindow = [target]() -> QWidget* {
        QMdiSubWindow* child = target->MDIGetActive();
        return child ? child->widget() : nullptr;
    };
    for (unsigned int id : {eDemoPrintWindow, eDemoPrintToPdf})
        frame.OnUpdateCommand(id, [activeWindow](CCmdUI* cmdUI) { cmdUI->Enable(activeWindow() != nullptr); });

    frame.OnCommand(eDemoPrintWindow, [target, activeWindow] {
        QWidget* window = activeWindow();
        if (!window)
            return;
        const QString pdf = PdfFileFor(window->windowTitle());
        const QFileInfo before(pdf);
        const bool toFile = PrintToPdfWithoutPrinters(pdf);
        const std::string title = window->windowTitle().toStdString();
        PrintWindow(window, title.c_str(), nullptr);
        TsPrintDialog::SetDefaultSetup(nullptr);
        if (toFile)
            target->SetMessageText(Described(before, pdf).toStdString());
    });
    frame.OnCommand(eDemoPrintToPdf, [target, activeWindow, printer] {
        QWidget* window = activeWindow();
        if (!window)
            return;
        const QString pdf = PdfFileFor(window->windowTitle());
        const QFileInfo before(pdf);
        ToPdf(printer->GetDialog()->GetPrinter(), pdf);
        WindowPrintOut printOut(window);
        printer->Print(target, printOut, false);
        target->SetMessageText(Described(before, pdf).toStdString());
    });
    frame.OnCommand(eDemoPrinterSetup, [target, printer] { printer->PrinterSetup(target); });
    frame.OnCommand(eDemoMissingDataMap, [target] {
        QMdiSubWindow* child = target->AddMDIChild(new MissingDataDocument);
        // In full view, over the middle of the area.
        const QSize area = target->GetMDIClient()->size();
        child->resize(std::min(420, area.width()), std::min(460, area.height()));
        child->move(std::max(0, (area.width() - child->width()) / 2), 0);
    });
}
