#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace suite {

// Who is told of something that happens on any thread. What the observer throws is dropped.
template <typename News>
class ObserverSlot {
public:
    using Observer = std::function<void(News)>;

    void Set(Observer observer) {
        auto shared = observer ? std::make_shared<const Observer>(std::move(observer)) : nullptr;
        const std::lock_guard<std::mutex> hold(m_lock);
        m_observer.swap(shared);
    }

    void Tell(News news) try {
        std::shared_ptr<const Observer> observer;
        {
            const std::lock_guard<std::mutex> hold(m_lock);
            observer = m_observer;
        }
        if (observer) {
            (*observer)(news);
        }
    } catch (...) {
        return;
    }

private:
    std::mutex m_lock;
    std::shared_ptr<const Observer> m_observer;
};

}  // namespace suite
