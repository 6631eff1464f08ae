#pragma once

#include <memory>
#include <utility>

namespace ZR::MakeShared {

/// The most derived class of an object that std::make_shared makes: opens its protected
/// constructors to that, and to nobody else.
template <class T>
class ClassT final : public T {
public:
    template <class... Args>
    explicit ClassT(Args &&...args)
        : T(std::forward<Args>(args)...)
    {
    }
};

/// As std::make_shared, through ClassT.
template <class T, class... Args>
std::shared_ptr<T> make(Args &&...args)
{
    return std::make_shared<ClassT<T>>(std::forward<Args>(args)...);
}

} // namespace ZR::MakeShared
