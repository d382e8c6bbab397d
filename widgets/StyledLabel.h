#pragma once

#include <QLabel>

/// A label in one of the few type styles that the pages share. So an interface description names a
/// style, not a font. Main thread only.
class StyledLabel final : public QLabel
{
    Q_OBJECT
    Q_PROPERTY(Role role READ role WRITE setRole)

public:
    enum Role {
        Title,   ///< the one large line of a page
        Body,    ///< sentences
        Caption, ///< names a figure or a picture
        Quiet,   ///< text that may be overlooked
    };
    Q_ENUM(Role)

    explicit StyledLabel(QWidget *parent = nullptr);

    Role role() const { return m_role; }
    void setRole(Role role);

private:
    Role m_role = Body;
};
