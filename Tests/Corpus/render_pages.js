// Renders each page of a file without its annotations: FILE OUT-PREFIX DPI [PASSWORD]. Writes PREFIX-0001.png and so on.
var file = scriptArgs[0], prefix = scriptArgs[1], scale = parseFloat(scriptArgs[2]) / 72;
var showAnnotations = scriptArgs[3] === "annotations";
var doc = new Document(file);
if (scriptArgs.length > 4) doc.authenticatePassword(scriptArgs[4]);
for (var i = 0, n = doc.countPages(); i < n; ++i) {
  try {
    var page = doc.loadPage(i);
    var b = page.bound();
    var box = [Math.floor(b[0] * scale), Math.floor(b[1] * scale), Math.ceil(b[2] * scale), Math.ceil(b[3] * scale)];
    var pixmap = new Pixmap(DeviceRGB, box, false);
    pixmap.clear(255);
    var device = new DrawDevice(Identity, pixmap);
    page.run(device, [scale, 0, 0, scale, 0, 0], !showAnnotations);
    device.close();
    pixmap.saveAsPNG(prefix + "-" + ("0000" + (i + 1)).slice(-4) + ".png");
  } catch (e) {
    print("page " + (i + 1) + ": " + e);
  }
}
