// Event handlers with names, by which streams keep them.
#pragma once

#include <any>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace quill {

// A handler that knows its name; what an event holds that was taken from a list of named handlers.
template <class TFunction>
struct TNamedHandler;

template <class... TArgs>
struct TNamedHandler<std::function<void(TArgs...)>> {
    std::string Name;
    std::function<void(TArgs...)> Handler;
    void operator()(TArgs... Args) const { Handler(std::forward<TArgs>(Args)...); }
};

// The name of the handler that an event holds; empty when it holds none or one without a name.
template <class TFunction>
std::string HandlerName(const TFunction& Event) {
    const auto* Named = Event.template target<TNamedHandler<TFunction>>();
    return Named ? Named->Name : std::string();
}

// The handlers that the events of a form may name. A program fills it before it loads the form; what it assigns to an
// event itself has no name and is not saved.
class TNamedHandlers {
public:
    // TFunction is the event's type: Handlers.Add<TNotifyEvent>("TreeClick", ...). A name is taken once for each type.
    template <class TFunction>
    void Add(const std::string& Name, TFunction Handler) {
        Remove(Name, typeid(TFunction));
        FHandlers[Name].emplace_back(TFunction(TNamedHandler<TFunction>{Name, std::move(Handler)}));
    }
    // The handler for an event of that type; empty when there is none.
    template <class TFunction>
    TFunction Get(std::string_view Name) const {
        for (const std::any& Handler : Find(Name))
            if (const auto* Function = std::any_cast<TFunction>(&Handler)) return *Function;
        return {};
    }
    // All that have that name, one for each type.
    std::vector<std::any> Find(std::string_view Name) const {
        const auto Found = FHandlers.find(Name);
        return Found == FHandlers.end() ? std::vector<std::any>() : Found->second;
    }

private:
    void Remove(const std::string& Name, const std::type_info& Type) {
        std::erase_if(FHandlers[Name], [&Type](const std::any& Handler) { return Handler.type() == Type; });
    }

    std::map<std::string, std::vector<std::any>, std::less<>> FHandlers;
};

} // namespace quill
