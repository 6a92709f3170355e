#include "job/schedule.h"

namespace zarn::job {

void Schedule::AddThread() {
    idle.reserve(threads + 1); // here, so that a worker can always become idle
    ++threads;
}

void Schedule::RemoveThread(bool hasTurn) {
    --threads;
    if (hasTurn) --running;
    GrantFreeTurns();
}

bool Schedule::Post(Task& task) {
    if (running >= processors) {
        queue.push_back(std::move(task));
        return true;
    }
    bool const hasIdle = !idle.empty();
    if (!hasIdle) AddThread();
    ++running;
    if (hasIdle) GiveToIdle(task);
    return hasIdle;
}

bool Schedule::Queue(Task& task) {
    if (!CanRunQueued()) return false;
    queue.push_back(std::move(task));
    GrantFreeTurns();
    return true;
}

std::list<Task> Schedule::RemoveStranded() noexcept {
    std::list<Task> stranded;
    if (!CanRunQueued()) std::swap(stranded, queue);
    return stranded;
}

bool Schedule::FindTask(Worker& worker) { return worker.hasTurn && (worker.task.job || TakeQueued(worker.task)); }

void Schedule::AddIdle(Worker& worker) {
    if (worker.hasTurn.exchange(false)) --running;
    idle.push_back(&worker);
    GrantFreeTurns();
}

void Schedule::Retire(Worker& worker) {
    std::erase(idle, &worker);
    --threads;
}

void Schedule::NotifyIdle() const noexcept {
    for (auto* const worker : idle) worker->Notify();
}

bool Schedule::ConsumeWake(Worker& worker) noexcept { return std::exchange(worker.isWoken, false); }

bool Schedule::Sleep(Worker& worker) {
    // When it is the queue's turn and no thread is idle, a new one gets the turn: otherwise jobs that keep waking and
    // sleeping would hand it to each other and starve the queue.
    bool const needsThread = !queue.empty() && idle.empty() && (queueIsNext || firstInLine == nullptr);
    if (needsThread) AddThread();
    worker.hasTurn = false;
    if (needsThread) return true;
    --running;
    GrantFreeTurns();
    return false;
}

void Schedule::Wake(Worker& worker) {
    if (worker.hasTurn) {
        worker.isWoken = true;
        return;
    }
    if (worker.isInLine) return;
    worker.isInLine = true;
    worker.behind = nullptr;
    (firstInLine == nullptr ? firstInLine : lastInLine->behind) = &worker;
    lastInLine = &worker;
    GrantFreeTurns();
}

/// Hands a task, and the turn that has been taken for it, to the worker that became idle last.
void Schedule::GiveToIdle(Task& task) {
    auto& worker = *idle.back();
    idle.pop_back();
    worker.task = std::move(task);
    worker.hasTurn = true;
    worker.Notify();
}

/// Takes a task out of the queue, unless a job in the line comes first.
bool Schedule::TakeQueued(Task& task) {
    if (queue.empty() || (firstInLine != nullptr && !queueIsNext)) return false;
    queueIsNext = false;
    task = std::move(queue.front());
    queue.pop_front();
    return true;
}

/// Gives a turn to the job that has been in the line longest.
bool Schedule::ResumeFirstInLine() {
    if (firstInLine == nullptr) return false;
    queueIsNext = true;
    auto& worker = *std::exchange(firstInLine, firstInLine->behind);
    worker.isInLine = false;
    worker.hasTurn = true;
    worker.Notify();
    return true;
}

/// Gives the free turns to jobs that go on, and to idle workers for tasks of the queue.
void Schedule::GrantFreeTurns() {
    for (Task task; running < processors; ++running) {
        if (!idle.empty() && TakeQueued(task))
            GiveToIdle(task);
        else if (!ResumeFirstInLine())
            return;
    }
}

} // namespace zarn::job
