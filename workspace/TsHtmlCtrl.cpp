#include <KORVAutlwin/workspace/TsHtmlCtrl.h>

#include <QLayout>
#include <QVariant>

TsHtmlCtrl::TsHtmlCtrl(QWidget* parent) : TsHtmlView(parent) {}

TsHtmlCtrl::~TsHtmlCtrl() = default;

int TsHtmlCtrl::CreateFromStatic(unsigned int id, QWidget* parent)
{
    if (!parent)
        return 0;
    QWidget* placeholder = nullptr;
    for (QWidget* child : parent->findChildren<QWidget*>())
        if (child->property("ctrlId").toUInt() == id && child != this) {
            placeholder = child;
            break;
        }
    if (!placeholder)
        return 0;
    QWidget* container = placeholder->parentWidget();
    const QRect rect = placeholder->geometry();
    setParent(container);
    if (QLayout* layout = container->layout(); layout && layout->indexOf(placeholder) >= 0)
        delete layout->replaceWidget(placeholder, this);
    else
        setGeometry(rect);
    delete placeholder;
    setProperty("ctrlId", id);
    show();
    Navigate2("about:blank", 0);
    return 1;
}
