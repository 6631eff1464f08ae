<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>zrVOMGUI</name>
    <message>
        <source>Designer::GraphHelp</source>
        <extracomment>Shows objects as boxes in layers, joined by lines. The program adds the objects and names the fields that count as links.</extracomment>
        <translation>Zeigt Objekte als Kästen in Schichten, durch Linien verbunden. Das Programm fügt die Objekte hinzu und nennt die Felder, die als Verknüpfungen gelten.</translation>
    </message>
    <message>
        <source>Designer::GraphTip</source>
        <extracomment>Objects as a graph</extracomment>
        <translation>Objekte als Graph</translation>
    </message>
    <message>
        <source>Designer::PathsHelp</source>
        <extracomment>Shows paths through the model, such as the results of a search: a row of cells for each.</extracomment>
        <translation>Zeigt Pfade durch das Modell, etwa die Ergebnisse einer Suche: je eine Reihe von Zellen.</translation>
    </message>
    <message>
        <source>Designer::PathsTip</source>
        <extracomment>A list of paths</extracomment>
        <translation>Eine Liste von Pfaden</translation>
    </message>
    <message>
        <source>Designer::RealHelp</source>
        <extracomment>Shows and sets the field of one name on a whole list of objects. Empty where they don't agree.</extracomment>
        <translation>Zeigt und setzt das Feld eines Namens an einer ganzen Liste von Objekten. Leer, wo sie nicht übereinstimmen.</translation>
    </message>
    <message>
        <source>Designer::RealTip</source>
        <extracomment>An editor of a real field</extracomment>
        <translation>Ein Eingabefeld für reelle Zahlen</translation>
    </message>
    <message>
        <source>Designer::SlotHelp</source>
        <extracomment>Shows one object by icon and label. Another one can be dropped into it, and its own dragged out.</extracomment>
        <translation>Zeigt ein Objekt mit Symbol und Beschriftung. Ein anderes lässt sich darauf ablegen und das eigene herausziehen.</translation>
    </message>
    <message>
        <source>Designer::SlotTip</source>
        <extracomment>A slot for one object</extracomment>
        <translation>Ein Platz für ein Objekt</translation>
    </message>
    <message>
        <source>Designer::TreeHelp</source>
        <extracomment>Shows objects, and what they link to, as rows that open. Names can be edited, and objects dragged and dropped.</extracomment>
        <translation>Zeigt Objekte und das, womit sie verknüpft sind, als Zeilen, die sich öffnen lassen. Namen lassen sich ändern und Objekte ziehen und ablegen.</translation>
    </message>
    <message>
        <source>Designer::TreeTip</source>
        <extracomment>Objects as a tree</extracomment>
        <translation>Objekte als Baum</translation>
    </message>
    <message>
        <source>Designer::TreeV1Help</source>
        <extracomment>Shows objects, and what they link to, as a tree view of Qt. Rows are fetched as they come into sight, and the program can save which are expanded.</extracomment>
        <translation>Zeigt Objekte und das, womit sie verknüpft sind, als Baumansicht von Qt. Zeilen werden geholt, wenn sie in Sicht kommen, und das Programm kann sich merken, welche aufgeklappt sind.</translation>
    </message>
    <message>
        <source>Designer::TreeV1Tip</source>
        <extracomment>Objects as a tree, first generation</extracomment>
        <translation>Objekte als Baum, erste Generation</translation>
    </message>
    <message>
        <source>Designer::TreeV2Help</source>
        <extracomment>Shows objects, and what they link to, as rows that open. Adding or removing a top row closes all of them.</extracomment>
        <translation>Zeigt Objekte und das, womit sie verknüpft sind, als Zeilen, die sich öffnen lassen. Kommt eine oberste Zeile hinzu oder geht eine, so schließen sich alle.</translation>
    </message>
    <message>
        <source>Designer::TreeV2Tip</source>
        <extracomment>Objects as a tree, second generation</extracomment>
        <translation>Objekte als Baum, zweite Generation</translation>
    </message>
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
