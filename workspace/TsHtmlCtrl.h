#pragma once
/// \class TsHtmlCtrl
/// A TsHtmlView as a control on a dialog, put in the place of a static control.
/// It belongs to its owner like any child widget.

#include <KORVAutlwin/workspace/TsHtmlView.h>

class TsHtmlCtrl : public TsHtmlView
{
    Q_OBJECT
public:
    explicit TsHtmlCtrl(QWidget* parent = nullptr);
    ~TsHtmlCtrl() override;

    /// Replaces the child of `parent` whose property "ctrlId" is `id` (a static
    /// control of a dialog form) by this control, at its place and size, with the
    /// same id, and navigates to "about:blank". 1 on success, 0 when there is no such child.
    int CreateFromStatic(unsigned int id, QWidget* parent);
};
