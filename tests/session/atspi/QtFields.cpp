// A window of Qt fields, for tests: Tab goes from one to the next.

#include <QApplication>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QWidget>

int main(int count, char** arguments) {
    QApplication application(count, arguments);
    QWidget window;
    QFormLayout layout(&window);
    QLineEdit line("Zeile");
    QLineEdit password("geheim");
    password.setEchoMode(QLineEdit::Password);
    QPlainTextEdit editor("erste\nzweite");
    editor.setTabChangesFocus(true);
    QComboBox combo;
    combo.setEditable(true);
    combo.addItem("Auswahl");
    QLineEdit readOnly("nur lesen");
    readOnly.setReadOnly(true);
    QPushButton button("Knopf");
    for (QWidget* field : std::initializer_list<QWidget*>{&line, &password, &editor, &combo, &readOnly, &button}) layout.addRow(field);
    window.show();
    line.setFocus();
    return QApplication::exec();
}
