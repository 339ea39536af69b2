// Fills the text fields of a file as another program does, the first one with "value 1" and so on: FILE OUT
var doc = new PDFDocument(scriptArgs[0]), count = 0;
for (var i = 0, n = doc.countPages(); i < n; ++i)
  doc.loadPage(i).getWidgets().forEach(function (widget) {
    if (widget.getFieldType() !== "text") return;
    widget.setTextValue("value " + ++count);
    widget.update();
  });
doc.save(scriptArgs[1], "");
print(count);
