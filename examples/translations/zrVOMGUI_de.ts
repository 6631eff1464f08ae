<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>zrVOMGUI</name>
    <message>
        <source>ZR::GUI::TreeRowLevel</source>
        <extracomment>Level %1</extracomment>
        <translation>Ebene %1</translation>
    </message>
    <message>
        <source>ZR::VOM::GUI::ObjectItemLabelAddress_1</source>
        <extracomment>@%1</extracomment>
        <translation>@%1</translation>
    </message>
    <message>
        <source>ZR::VOM::GUI::ObjectItemLabelAddress_1_Name_2</source>
        <extracomment>'%2' @%1</extracomment>
        <translation>„%2“ @%1</translation>
    </message>
    <message>
        <source>ZR::VOM::GUI::ObjectItemLabelName_1</source>
        <extracomment>'%1'</extracomment>
        <translation>„%1“</translation>
    </message>
    <message>
        <source>ZR::VOM::GUI::ObjectItemLabelType_1</source>
        <extracomment>%1</extracomment>
        <translation>%1</translation>
    </message>
    <message>
        <source>ZR::VOM::GUI::ObjectItemLabelType_1_Address_2</source>
        <extracomment>%1 @%2</extracomment>
        <translation>%1 @%2</translation>
    </message>
    <message>
        <source>ZR::VOM::GUI::ObjectItemLabelType_1_Address_2_Name_3</source>
        <extracomment>%1 '%3' @%2</extracomment>
        <translation>%1 „%3“ @%2</translation>
    </message>
    <message>
        <source>ZR::VOM::GUI::ObjectItemLabelType_1_Name_2</source>
        <extracomment>%1 '%2'</extracomment>
        <translation>%1 „%2“</translation>
    </message>
    <message>
        <source>ZR::VOM::GUI::ObjectTreeModelRowLabelObj0</source>
        <extracomment>void</extracomment>
        <translation>leer</translation>
    </message>
    <message>
        <source>ZR::VOM::GUI::ObjectTreeViewVoidRowLabel</source>
        <extracomment>void</extracomment>
        <translation>leer</translation>
    </message>
</context>
</TS>
