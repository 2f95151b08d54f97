#pragma once

/// Owns objects that only a plug-in refers to, by their handles, until the plug-in frees them.

#include <memory>
#include <mutex>
#include <unordered_map>

namespace Tesseret::Host {

template <typename Object>
class HandleOwner {
public:
    Object& keep(std::unique_ptr<Object> object)
    {
        const std::lock_guard lock(mutex_);
        Object* const key = object.get();
        return *objects_.emplace(key, std::move(object)).first->second;
    }

    void destroy(const Object& object)
    {
        const std::lock_guard lock(mutex_);
        objects_.erase(&object);
    }

private:
    std::mutex mutex_;
    std::unordered_map<const Object*, std::unique_ptr<Object>> objects_;
};

}  // namespace Tesseret::Host
