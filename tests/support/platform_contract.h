// What a test of the platform seam hands to a platform: objects, and files with metadata. Each
// platform has its own way to make them; the test is the same for both.
#pragma once

#include "platform/foundation_values.h"
#include "platform/image_properties.h"
#include "platform/spotlight_value.h"

#include <QByteArray>
#include <QStringList>

#include <memory>

class contract_fixture {
  public:
    virtual ~contract_fixture() = default;

    // The objects live as long as the fixture.
    virtual void *key(const QString &text) = 0;
    virtual const __CFString *cfstring(const QString &text) = 0;
    // The dictionary that stands in the XML list.
    virtual void *dictionary(const QByteArray &list) = 0;
    // Answers the first question from one list and the later ones from the other.
    virtual void *changing_dictionary(const QByteArray &first, const QByteArray &later) = 0;
    virtual NSDate *date(double epoch_seconds) = 0;
    virtual NSObject *object_of(NSDate *date) = 0;
    virtual NSObject *text_object() = 0;

    // The file at that path exists, and has nothing yet. False on a Mac, where the system answers.
    virtual bool give_attribute(const QString &path, const QString &name,
                                const platform::spotlight_value &value) = 0;
    virtual bool give_position(const QString &path, const platform::gps_position &position) = 0;

    // What the platform made or retained and did not release; empty where nothing is counted.
    [[nodiscard]] virtual QStringList faults() = 0;
};

[[nodiscard]] std::unique_ptr<contract_fixture> make_contract_fixture();
