// Part of schema.h: items of event messages, analytics modules and rules.

typedef tt__Unused tt__ItemListExtension, tt__ItemListDescriptionExtension, tt__MessageExtension,
    tt__MessageDescriptionExtension;

/// Named values.
class tt__ItemList
{ public:
    std::vector<
    class _tt__ItemList_SimpleItem
    { public:
        @ std::string          Name  1;
        @ xsd__anySimpleType   Value 1;
    }>                         SimpleItem  0;
    std::vector<
    class _tt__ItemList_ElementItem
    { public:
        xsd__anyType           __any 0;
        @ std::string          Name  1;
    }>                         ElementItem 0;
    tt__ItemListExtension*     Extension   0;
    @ xsd__anyAttribute        __anyAttribute;
};

/// Names and types of the values of an item list. The types are QNames: their prefixes are those of the namespace table.
class tt__ItemListDescription
{ public:
    std::vector<
    class _tt__ItemListDescription_SimpleItemDescription
    { public:
        @ std::string                 Name 1;
        @ xsd__QName                  Type 1;
    }>                                SimpleItemDescription  0;
    std::vector<
    class _tt__ItemListDescription_ElementItemDescription
    { public:
        @ std::string                 Name 1;
        @ xsd__QName                  Type 1;
    }>                                ElementItemDescription 0;
    tt__ItemListDescriptionExtension* Extension              0;
    @ xsd__anyAttribute               __anyAttribute;
};

enum tt__PropertyOperation
{
    tt__PropertyOperation__Initialized,
    tt__PropertyOperation__Deleted,
    tt__PropertyOperation__Changed
};

/// The content of a notification.
class tt__Message
{ public:
    tt__ItemList*                 Source            0;
    tt__ItemList*                 Key               0;
    tt__ItemList*                 Data              0;
    tt__MessageExtension*         Extension         0;
    @ time_t                      UtcTime           1;
    @ enum tt__PropertyOperation* PropertyOperation 0;
    @ xsd__anyAttribute           __anyAttribute;
};

/// The element tt:Message: a DOM node with this type needs no name.
typedef tt__Message _tt__Message;

/// The items that the messages of a topic carry.
class tt__MessageDescription
{ public:
    tt__ItemListDescription*         Source     0;
    tt__ItemListDescription*         Key        0;
    tt__ItemListDescription*         Data       0;
    tt__MessageDescriptionExtension* Extension  0;
    @ bool*                          IsProperty 0;
    @ xsd__anyAttribute              __anyAttribute;
};

typedef tt__Unused tt__ConfigDescriptionExtension, tt__SupportedAnalyticsModulesExtension;

/// An analytics module or rule.
/// Parameters: required by the schema, left out by a module without parameters.
class tt__Config
{ public:
    tt__ItemList* Parameters 0;
    @ std::string Name       1;
    @ xsd__QName  Type       1;
};

/// A kind of analytics module or rule.
/// Parameters: required by the schema, left out by a module without parameters.
class tt__ConfigDescription
{ public:
    tt__ItemListDescription* Parameters 0;
    std::vector<
    class _tt__ConfigDescription_Messages
    { public:
        tt__ItemListDescription*         Source      0;
        tt__ItemListDescription*         Key         0;
        tt__ItemListDescription*         Data        0;
        tt__MessageDescriptionExtension* Extension   0;
        @ bool*                          IsProperty  0;
        std::string                      ParentTopic 1;
        @ xsd__anyAttribute              __anyAttribute;
    }>                              Messages     0;
    tt__ConfigDescriptionExtension* Extension    0;
    @ xsd__QName                    Name         1;
    @ bool*                         fixed        0;
    @ xsd__integer*                 maxInstances 0;
    @ xsd__anyAttribute             __anyAttribute;
};

class tt__SupportedAnalyticsModules
{ public:
    std::vector<xsd__anyURI>                AnalyticsModuleContentSchemaLocation 0;
    std::vector<tt__ConfigDescription*>     AnalyticsModuleDescription           0;
    tt__SupportedAnalyticsModulesExtension* Extension                            0;
    @ int*                                  Limit                                0;
    @ xsd__anyAttribute                     __anyAttribute;
};
