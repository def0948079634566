// The frame's form: an empty frame.
#pragma once

class QFrame;

class Ui_cyberduck
{
public:
    // Sets the frame's name (unless it has one), size, shape, shadow and title, and connects its
    // slots by name.
    void setupUi(QFrame *frame);
    void retranslateUi(QFrame *frame);
};
