#pragma once
// A small tip window for a short message, where a message box would be too much.

#include <QLabel>

/// A small tip window that shows a short message by the mouse pointer.
class InfoTipWnd : public QLabel
{
    Q_OBJECT
public:
    /// Shows `text` in a tip window by the mouse pointer, which goes away by
    /// itself after msShowMilliseconds or at the next click. One tip at a time.
    static void InfoTipMessageBox(const char* text);
    /// The tip window shown last, or null; it is reused for the next text.
    static InfoTipWnd* GetInfoTip();

    static constexpr int msShowMilliseconds = 4000;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    InfoTipWnd();
};
