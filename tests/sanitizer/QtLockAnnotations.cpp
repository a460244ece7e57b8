// Tells the thread sanitizer of Qt's locks and threads, in programs under test only.
//
// A QMutex waits for a futex inside of Qt's library, which was built without the sanitizer: it sees neither
// the lock nor what the lock orders, and reports races where there are none. The functions here stand before
// Qt's in every program of the tests: each tells the sanitizer what is going to happen, lets Qt's own
// function do it, and tells that it has happened. Calls from inside of QtCore do not come by here; nothing
// here relies on them.
//
// The beginning of a QThread needs no telling, since the sanitizer sees the thread being created.
#include <QDeadlineTimer>
#include <QMutex>
#include <QThread>
#include <QWaitCondition>

#include <dlfcn.h>
#include <memory>
#include <sanitizer/tsan_interface.h>

namespace {

template <typename Function>
Function* nextNamed(const char* symbol) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
}

unsigned flagsOf(const QMutex* mutex) {
    return mutex->isRecursive() ? __tsan_mutex_write_reentrant : 0;
}

template <typename Lock>
bool tryToLock(QMutex* mutex, const Lock& lock) {
    const unsigned flags = flagsOf(mutex) | __tsan_mutex_try_lock;
    __tsan_mutex_pre_lock(mutex, flags);
    const bool isLocked = lock();
    __tsan_mutex_post_lock(mutex, isLocked ? flags : flags | __tsan_mutex_try_lock_failed, 1);
    return isLocked;
}

// The mutex is given up and taken again inside of Qt's function.
template <typename Wait>
bool waitUnlocked(QMutex* mutex, const Wait& wait) {
    const unsigned flags = flagsOf(mutex);
    __tsan_mutex_pre_unlock(mutex, flags);
    __tsan_mutex_post_unlock(mutex, flags);
    const bool isWoken = wait();
    __tsan_mutex_pre_lock(mutex, flags);
    __tsan_mutex_post_lock(mutex, flags, 1);
    return isWoken;
}

bool seenEnded(QThread* thread, bool hasEnded) {
    if (hasEnded)
        __tsan_acquire(thread);
    return hasEnded;
}

// A function that one thread posts to another one: what was done before comes before the call, and what the
// call does comes before the end of the object. Who waits for the call drops the object after it.
class PostedSlot : public QtPrivate::QSlotObjectBase {
public:
    explicit PostedSlot(QSlotObjectBase* postedSlot) : QSlotObjectBase(&act), slot(postedSlot) {
        __tsan_release(this);
    }

private:
    static void act(int operation, QSlotObjectBase* base, QObject* receiver, void** arguments, bool* result) {
        auto* const self = static_cast<PostedSlot*>(base);
        __tsan_acquire(self);
        if (operation == Call) {
            self->slot->call(receiver, arguments);
            __tsan_release(self);
        } else if (operation == Destroy) {
            self->slot->destroyIfLastRef();
            delete self;
        } else if (operation == Compare) {
            *result = self->slot->compare(arguments);
        }
    }

    QSlotObjectBase* const slot;
};

} // namespace

QMutex::~QMutex() {
    static const auto next = nextNamed<void(QMutex*)>("_ZN6QMutexD1Ev");
    __tsan_mutex_destroy(this, flagsOf(this));
    next(this);
}

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT {
    static const auto next = nextNamed<void(QMutex*)>("_ZN6QMutex4lockEv");
    const unsigned flags = flagsOf(this);
    __tsan_mutex_pre_lock(this, flags);
    next(this);
    __tsan_mutex_post_lock(this, flags, 1);
}

bool QMutex::tryLock(int timeout) QT_MUTEX_LOCK_NOEXCEPT {
    static const auto next = nextNamed<bool(QMutex*, int)>("_ZN6QMutex7tryLockEi");
    return tryToLock(this, [this, timeout] { return next(this, timeout); });
}

void QMutex::unlock() noexcept {
    static const auto next = nextNamed<void(QMutex*)>("_ZN6QMutex6unlockEv");
    const unsigned flags = flagsOf(this);
    __tsan_mutex_pre_unlock(this, flags);
    next(this);
    __tsan_mutex_post_unlock(this, flags);
}

bool QWaitCondition::wait(QMutex* mutex, QDeadlineTimer deadline) {
    static const auto next = nextNamed<bool(QWaitCondition*, QMutex*, QDeadlineTimer)>(
        "_ZN14QWaitCondition4waitEP6QMutex14QDeadlineTimer");
    return waitUnlocked(mutex, [&] { return next(this, mutex, deadline); });
}

bool QWaitCondition::wait(QMutex* mutex, unsigned long time) {
    static const auto next =
        nextNamed<bool(QWaitCondition*, QMutex*, unsigned long)>("_ZN14QWaitCondition4waitEP6QMutexm");
    return waitUnlocked(mutex, [&] { return next(this, mutex, time); });
}

// What a thread did before it told that it has finished is seen by those who have waited for it.
void QThread::start(Priority priority) {
    static const auto next = nextNamed<void(QThread*, Priority)>("_ZN7QThread5startENS_8PriorityE");
    const auto told = std::make_shared<QMetaObject::Connection>();
    *told = connect(
        this, &QThread::finished, this,
        [this, told] {
            disconnect(*told);
            __tsan_release(this);
        },
        Qt::DirectConnection);
    next(this, priority);
}

bool QThread::wait(QDeadlineTimer deadline) {
    static const auto next = nextNamed<bool(QThread*, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer");
    return seenEnded(this, next(this, deadline));
}

bool QThread::wait(unsigned long time) {
    static const auto next = nextNamed<bool(QThread*, unsigned long)>("_ZN7QThread4waitEm");
    return seenEnded(this, next(this, time));
}

// Posted events are handed over under a lock inside of QtCore, and waited for with a semaphore there.
bool QMetaObject::invokeMethodImpl(QObject* object, QtPrivate::QSlotObjectBase* slot, Qt::ConnectionType type,
                                   void* result) {
    static const auto next = nextNamed<bool(QObject*, QtPrivate::QSlotObjectBase*, Qt::ConnectionType,
                                            void*)>(
        "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv");
    return next(object, new PostedSlot(slot), type, result);
}
