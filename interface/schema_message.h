// Part of schema.h: items of event messages, analytics modules and rules.

/// Named values.
class tt__ItemList
{ public:
    std::vector<
    class _tt__ItemList_SimpleItem
    { public:
        @ std::string          Name  1;
        @ xsd__anySimpleType   Value 1;
    }>                         SimpleItem  0;
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
    tt__ItemList*                 Data              0;
    @ time_t                      UtcTime           1;
    @ enum tt__PropertyOperation* PropertyOperation 0;
};

/// The element tt:Message: a DOM node with this type needs no name.
typedef tt__Message _tt__Message;

/// The items that the messages of a topic carry.
class tt__MessageDescription
{ public:
    tt__ItemListDescription* Source     0;
    tt__ItemListDescription* Data       0;
    @ bool*                  IsProperty 0;
};

/// An analytics module or rule.
/// The schema requires Parameters as well; the modules have none.
class tt__Config
{ public:
    @ std::string Name 1;
    @ xsd__QName  Type 1;
};

/// A kind of analytics module or rule.
/// The schema requires Parameters as well; the modules have none.
class tt__ConfigDescription
{ public:
    @ xsd__QName Name  1;
};

class tt__SupportedAnalyticsModules
{ public:
    std::vector<tt__ConfigDescription*> AnalyticsModuleDescription 0;
};
