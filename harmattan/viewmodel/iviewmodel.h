#ifndef HARMATTAN_IVIEWMODEL_H
#define HARMATTAN_IVIEWMODEL_H

class QObject;
class QQmlContext;

namespace Harmattan {

// What every view model offers besides being a QObject.
class IViewModel
{
public:
    virtual ~IViewModel() {}
    // The view model's screen was just created: set its initial properties,
    // connect its signals, and connect its destroyed() to onViewDestroyed().
    virtual void setView(QObject* view) = 0;
    // Publishes the view model's data models into the root context at start-up.
    virtual void setContext(QQmlContext* context) = 0;
};

} // namespace Harmattan

#endif
