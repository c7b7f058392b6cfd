#include "ToolkitDemos.h"

#include "DemoMenus.h"

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/toolkit/CColourPickerXP.h>
#include <KORVAutlwin/toolkit/RestrictedTimeCtrl.h>
#include <KORVAutlwin/toolkit/TimeSpanCtrl.h>
#include <KORVAutlwin/toolkit/ZoomScrollBarViewer.h>

#include <KORVAutl/TsTimeUtl.h>

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QRandomGenerator>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int kPoints = 4000;

// The plot: a noisy signal of a few thousand points, drawn with QPainter in the
// part of its range that the view holds.
class PlotCanvas : public QWidget
{
public:
    PlotCanvas(QWidget* parent) : QWidget(parent)
    {
        QRandomGenerator noise(7);
        mY.reserve(kPoints);
        for (int i = 0; i < kPoints; ++i)
            mY.push_back(static_cast<float>(std::sin(i / 90.0) * 35 + std::sin(i / 11.0) * 8 + noise.bounded(6.0) + 50));
        setMouseTracking(true);
    }

    float full[2][2] = {{0, kPoints - 1}, {0, 100}};
    float view[2][2] = {{0, kPoints - 1}, {0, 100}};
    COLORREF colour = 0x800000;
    COLORREF background = 0xFFFFFF;
    std::function<void(float, float, float, float)> zoom; // asks the owner to show another part

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), korva::ToQColor(background));
        const QRectF area = QRectF(rect()).adjusted(44, 14, -22, -26);
        painter.setPen(QColor(0xC0, 0xC0, 0xC0));
        painter.drawRect(area);

        auto toX = [&](float x) { return area.left() + (x - view[0][0]) / (view[0][1] - view[0][0]) * area.width(); };
        auto toY = [&](float y) { return area.bottom() - (y - view[1][0]) / (view[1][1] - view[1][0]) * area.height(); };

        painter.setPen(Qt::black);
        for (int tick = 0; tick <= 4; ++tick) {
            const float x = view[0][0] + (view[0][1] - view[0][0]) * tick / 4;
            const float y = view[1][0] + (view[1][1] - view[1][0]) * tick / 4;
            painter.drawText(QRectF(toX(x) - 30, area.bottom() + 4, 60, 18), Qt::AlignCenter, QString::number(x, 'f', 0));
            painter.drawText(QRectF(0, toY(y) - 9, 40, 18), Qt::AlignRight | Qt::AlignVCenter, QString::number(y, 'f', 1));
        }

        painter.save();
        painter.setClipRect(area);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(korva::ToQColor(colour), 1.2));
        QPainterPath path;
        const int first = std::max(0, static_cast<int>(std::floor(view[0][0])));
        const int last = std::min(kPoints - 1, static_cast<int>(std::ceil(view[0][1])));
        for (int i = first; i <= last; ++i) {
            const QPointF point(toX(static_cast<float>(i)), toY(mY[i]));
            if (i == first)
                path.moveTo(point);
            else
                path.lineTo(point);
        }
        painter.drawPath(path);
        painter.restore();
    }

    // The wheel zooms around the pointer: up in, down out.
    void wheelEvent(QWheelEvent* event) override
    {
        const double factor = event->angleDelta().y() > 0 ? 0.8 : 1.25;
        const QPointF at = event->position();
        const float fx = static_cast<float>(std::clamp(at.x() / std::max(1, width()), 0.0, 1.0));
        const float fy = static_cast<float>(std::clamp(1.0 - at.y() / std::max(1, height()), 0.0, 1.0));
        float next[2][2];
        const float fractions[2] = {fx, fy};
        for (int axis = 0; axis < 2; ++axis) {
            const float span = (view[axis][1] - view[axis][0]) * static_cast<float>(factor);
            const float centre = view[axis][0] + (view[axis][1] - view[axis][0]) * fractions[axis];
            next[axis][0] = std::max(full[axis][0], centre - span * fractions[axis]);
            next[axis][1] = std::min(full[axis][1], next[axis][0] + span);
        }
        if (zoom)
            zoom(next[0][0], next[0][1], next[1][0], next[1][1]);
    }

private:
    std::vector<float> mY;
};

// What the zoom scroll bars see of the plot. The y axis runs upwards, against
// the vertical bar.
class PlotZoom : public Zoomable
{
public:
    PlotZoom(PlotCanvas* canvas, std::function<void()> zoomed) : mCanvas(canvas), mZoomed(std::move(zoomed)) {}

    void GetZoomRange(int axis, float& low, float& high) override
    {
        low = mCanvas->view[axis][0];
        high = mCanvas->view[axis][1];
    }
    void GetFullRange(int axis, float& low, float& high) override
    {
        low = mCanvas->full[axis][0];
        high = mCanvas->full[axis][1];
    }
    bool IsAscending(int axis) override { return axis == 0; }
    bool HasContents() override { return true; }
    void Resize(int x, int y, int width, int height) override { mCanvas->setGeometry(x, y, width, height); }
    void Zoom(float xLow, float xHigh, float yLow, float yHigh) override
    {
        mCanvas->view[0][0] = xLow;
        mCanvas->view[0][1] = xHigh;
        mCanvas->view[1][0] = yLow;
        mCanvas->view[1][1] = yHigh;
        mCanvas->update();
        mZoomed();
    }

private:
    PlotCanvas* mCanvas;
    std::function<void()> mZoomed;
};

// The plot's window: the canvas and the bars, which the viewer lays out.
class PlotArea : public QWidget
{
public:
    explicit PlotArea(QWidget* parent) : QWidget(parent), mCanvas(new PlotCanvas(this))
    {
        mViewer.ConnectZoomable(new PlotZoom(mCanvas, [this] { mViewer.UpdateScrollBars(false, rect()); }));
        mViewer.OnCreateScrollBars(this);
        mCanvas->zoom = [this](float xLow, float xHigh, float yLow, float yHigh) {
            mViewer.GetZoomable()->Zoom(xLow, xHigh, yLow, yHigh);
        };
        setMinimumSize(360, 240);
    }

    PlotCanvas* Canvas() const { return mCanvas; }
    void Zoom(float xLow, float xHigh, float yLow, float yHigh) { mCanvas->zoom(xLow, xHigh, yLow, yHigh); }

protected:
    void resizeEvent(QResizeEvent*) override { mViewer.UpdateScrollBars(true, rect()); }

private:
    PlotCanvas* mCanvas;
    ZoomScrollBarViewer mViewer;
};

class ToolkitDocument : public QWidget
{
public:
    ToolkitDocument()
    {
        setWindowTitle(QStringLiteral("Toolkit"));
        plot = new PlotArea(this);

        picker = new CColourPickerXP(this);
        picker->setFixedSize(60, 26);
        picker->SetDefaultColor(0x800000);
        picker->SetRegSection("ToolkitDemo");
        picker->SetTrackSelection(1);
        auto* name = new QLabel(this);
        auto follow = [this, name](int, unsigned long) {
            plot->Canvas()->colour = picker->GetColor(1);
            plot->Canvas()->update();
            name->setText(QString::fromStdString(picker->GetColourText()));
        };
        QObject::connect(picker, &CColourPickerXP::Notice, this, follow);
        follow(0, 0);

        // The other look: a combo box with the colour's name.
        auto* ground = new CColourPickerXP(this);
        ground->SetStyle(1);
        ground->SetDefaultColor(0xFFFFFF);
        ground->SetRegSection("ToolkitDemo");
        ground->setMinimumWidth(190);
        QObject::connect(ground, &CColourPickerXP::Notice, this, [this, ground](int, unsigned long) {
            plot->Canvas()->background = ground->GetColor(1);
            plot->Canvas()->update();
        });

        auto* start = new RestrictedTimeCtrl(this);
        start->SetTimeResolution(900, QDateTime(QDate(2000, 1, 1), QTime(0, 0)).toSecsSinceEpoch());
        start->SetTime(QDateTime(QDate::currentDate(), QTime(8, 0)));
        auto* interval = new TimeSpanCtrl(this);
        interval->SetTimeResolution(900);
        interval->SetMinTimeSpan(900);
        interval->SetTimeSpan(3600);

        auto* zoomIn = new QPushButton(QStringLiteral("Zoom in"), this);
        auto* fullView = new QPushButton(QStringLiteral("Full view"), this);
        QObject::connect(zoomIn, &QPushButton::clicked, this, [this] {
            const PlotCanvas* canvas = plot->Canvas();
            float next[2][2];
            for (int axis = 0; axis < 2; ++axis) {
                const float quarter = (canvas->view[axis][1] - canvas->view[axis][0]) / 4;
                next[axis][0] = canvas->view[axis][0] + quarter;
                next[axis][1] = canvas->view[axis][1] - quarter;
            }
            plot->Zoom(next[0][0], next[0][1], next[1][0], next[1][1]);
        });
        QObject::connect(fullView, &QPushButton::clicked, this, [this] { plot->Zoom(0, kPoints - 1, 0, 100); });

        auto* controls = new QFormLayout;
        auto* colourRow = new QHBoxLayout;
        colourRow->addWidget(picker);
        colourRow->addWidget(name, 1);
        controls->addRow(QStringLiteral("Plot colour"), colourRow);
        controls->addRow(QStringLiteral("Background"), ground);
        controls->addRow(QStringLiteral("Start (quarter hours)"), start);
        controls->addRow(QStringLiteral("Interval"), interval);
        auto* buttons = new QHBoxLayout;
        buttons->addWidget(zoomIn);
        buttons->addWidget(fullView);
        buttons->addStretch();
        controls->addRow(buttons);
        auto* hint = new QLabel(QStringLiteral("Pull either end of a thumb to zoom; the wheel zooms too."), this);
        hint->setWordWrap(true);
        controls->addRow(hint);

        auto* layout = new QHBoxLayout(this);
        layout->addWidget(plot, 1);
        layout->addLayout(controls);
        resize(780, 420);
    }

    PlotArea* plot;
    CColourPickerXP* picker;
};

ToolkitDocument* OpenDocument(TessmaMDIFrame* frame)
{
    auto* document = new ToolkitDocument;
    frame->AddMDIChild(document)->showMaximized();
    return document;
}

} // namespace

void AddToolkitDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = SubmenuOf(frame, ControlsMenu(), QObject::tr("&Toolkit"));
    frame.AddCommand(menu, eDemoToolkitDocument, QObject::tr("Toolkit &document"));
    frame.AddCommand(menu, eDemoColourPopup, QObject::tr("Toolkit document with the &colour popup"));
    frame.AddCommand(menu, eDemoZoomedPlot, QObject::tr("Toolkit document, &zoomed"));
    frame.AddCommand(menu, eDemoDateFormat, QObject::tr("Date &format..."));

    TessmaMDIFrame* target = &frame;
    frame.OnCommand(eDemoToolkitDocument, [target] { OpenDocument(target); });
    frame.OnCommand(eDemoColourPopup, [target] {
        ToolkitDocument* document = OpenDocument(target);
        // Once the child is laid out, the picker drops down as if clicked.
        QTimer::singleShot(50, document, [document] { document->picker->click(); });
    });
    frame.OnCommand(eDemoZoomedPlot, [target] {
        ToolkitDocument* document = OpenDocument(target);
        QTimer::singleShot(0, document, [document] { document->plot->Zoom(1200, 1900, 20, 80); });
    });
    frame.OnCommand(eDemoDateFormat, [target] {
        std::string format;
        if (TsTimeUtl::GetUserFormatString("The column \"Sampled\" holds dates such as this one.", "05-Aug-2005 14:03:27",
                                           "", format))
            target->SetMessageText("Dates are read with the format " + format);
        else
            target->SetMessageText("No date format given.");
    });
}
