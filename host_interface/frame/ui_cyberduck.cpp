#include "host_interface/frame/ui_cyberduck.h"

#include <QCoreApplication>
#include <QFrame>
#include <QMetaObject>

void Ui_cyberduck::setupUi(QFrame *frame)
{
    if (frame->objectName().isEmpty())
        frame->setObjectName(QStringLiteral("cyberduck"));
    frame->setFrameShadow(QFrame::Raised);
    frame->resize(400, 300);
    frame->setFrameShape(QFrame::StyledPanel);
    retranslateUi(frame);
    QMetaObject::connectSlotsByName(frame);
}

void Ui_cyberduck::retranslateUi(QFrame *frame)
{
    frame->setWindowTitle(QCoreApplication::translate("cyberduck", "Frame"));
}
