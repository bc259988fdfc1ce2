#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>

// Answers the next modal box of type Box that the window opens while the
// returned guard lives: `answer` gets it to fill in, read and close. A box of
// another type is left to another guard, so an input box and the warning it
// leads to can each have their own.
template <class Box> std::unique_ptr<QTimer> answerNext(std::function<void(Box*)> answer) {
    auto timer = std::make_unique<QTimer>();
    timer->setInterval(5);
    QTimer* self = timer.get();
    QObject::connect(self, &QTimer::timeout, [self, answer = std::move(answer)] {
        auto* box = qobject_cast<Box*>(QApplication::activeModalWidget());
        if (!box) return;
        self->stop();
        answer(box);
    });
    timer->start();
    return timer;
}
