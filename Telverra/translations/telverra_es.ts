<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es">
<context>
    <name>AboutSettingsView</name>
    <message>
        <source>**Telverra** is free and open source software. This is why this app is now shared with the world for free.

Do you want to help me out improving this tool ? I believe that the Mac really deserves a better experiece to launch calls and handle your communicating with people.</source>
        <translation>**Telverra** es software libre y de código abierto. Por eso esta aplicación se comparte ahora gratis con todo el mundo.

¿Quiere ayudarme a mejorar esta herramienta? Creo que el ordenador merece una forma mejor de hacer llamadas y de comunicarse con la gente.</translation>
    </message>
    <message>
        <source>Version %1</source>
        <translation>Versión %1</translation>
    </message>
</context>
<context>
    <name>ActionScrollBar</name>
    <message>
        <source>Scroll up and down</source>
        <translation>Desplazar arriba y abajo</translation>
    </message>
    <message>
        <source>Scroll sideways</source>
        <translation>Desplazar a los lados</translation>
    </message>
</context>
<context>
    <name>AddNewFavoriteTelcoView</name>
    <message>
        <source>Add a new favorite telco</source>
        <translation>Añadir un enlace de reunión favorito</translation>
    </message>
    <message>
        <source>save a telco with a name and a URL for easy access later</source>
        <translation>guarde un enlace de reunión con un nombre y una URL para tenerlo a mano</translation>
    </message>
    <message>
        <source>name</source>
        <translation>nombre</translation>
    </message>
    <message>
        <source>URL </source>
        <translation>URL </translation>
    </message>
    <message>
        <source>URL</source>
        <translation>URL</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>Add Telco</source>
        <translation>Añadir enlace</translation>
    </message>
</context>
<context>
    <name>AllContactsView</name>
    <message>
        <source>Search contacts</source>
        <translation>Buscar contactos</translation>
    </message>
    <message>
        <source>Hide the alphabet index</source>
        <translation>Ocultar el índice alfabético</translation>
    </message>
    <message>
        <source>Show the alphabet index</source>
        <translation>Mostrar el índice alfabético</translation>
    </message>
    <message>
        <source>Contacts</source>
        <translation>Contactos</translation>
    </message>
    <message>
        <source>Section %1</source>
        <extracomment>A heading of the contact list: the letter the names below it begin with</extracomment>
        <translation>Sección %1</translation>
    </message>
    <message>
        <source>Go to %1</source>
        <extracomment>A letter of the alphabet index beside the contact list</extracomment>
        <translation>Ir a %1</translation>
    </message>
    <message>
        <source>Reading the address book</source>
        <translation>Leyendo la libreta de direcciones</translation>
    </message>
    <message>
        <source>Reading your address book…</source>
        <translation>Leyendo su libreta de direcciones…</translation>
    </message>
    <message>
        <source>No contacts match</source>
        <translation>Ningún contacto coincide</translation>
    </message>
    <message>
        <source>No contacts yet</source>
        <translation>Todavía no hay contactos</translation>
    </message>
    <message>
        <source>Nobody in your address book has “%1” in their name.</source>
        <translation>Nadie en su libreta de direcciones tiene «%1» en su nombre.</translation>
    </message>
    <message>
        <source>Telverra reads vCard folders: the address books in khard&apos;s configuration, ~/.local/share/contacts and ~/.local/share/kpeoplevcard (where KDE Connect keeps a phone&apos;s contacts). Put .vcf files in a folder there, or start Telverra with --contacts DIR to read another folder.</source>
        <translation>Telverra lee carpetas de vCard: las libretas de direcciones de la configuración de khard, ~/.local/share/contacts y ~/.local/share/kpeoplevcard (donde KDE Connect guarda los contactos de un teléfono). Ponga archivos .vcf en una de esas carpetas o inicie Telverra con --contacts CARPETA para leer otra.</translation>
    </message>
    <message>
        <source>Add to favorites</source>
        <translation>Añadir a favoritos</translation>
    </message>
    <message>
        <source>Contacts Permission Denied</source>
        <translation>Permiso denegado para los contactos</translation>
    </message>
    <message numerus="yes">
        <source>%n contacts</source>
        <translation>
            <numerusform>%n contacto</numerusform>
            <numerusform>%n contactos</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>CallTypes</name>
    <message>
        <source>Telephone</source>
        <translation>Teléfono</translation>
    </message>
    <message>
        <source>Facetime</source>
        <translation>Facetime</translation>
    </message>
    <message>
        <source>Facetime Audio</source>
        <translation>Facetime audio</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Mensaje</translation>
    </message>
    <message>
        <source>Skype</source>
        <translation>Skype</translation>
    </message>
    <message>
        <source>Slack</source>
        <translation>Slack</translation>
    </message>
    <message>
        <source>Telegtram</source>
        <translation>Telegram</translation>
    </message>
    <message>
        <source>Mail</source>
        <translation>Correo</translation>
    </message>
    <message>
        <source>Google Meet</source>
        <translation>Google Meet</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Webex</source>
        <translation>Webex</translation>
    </message>
    <message>
        <source>Jitsi</source>
        <translation>Jitsi</translation>
    </message>
</context>
<context>
    <name>CallsManager</name>
    <message>
        <source>No application on this computer opens phone calls (tel: addresses). Install KDE Connect to call through your phone, or GNOME Calls.</source>
        <translation>Ninguna aplicación de este equipo abre llamadas de teléfono (direcciones tel:). Instale KDE Connect para llamar a través de su teléfono, o GNOME Calls.</translation>
    </message>
    <message>
        <source>No application on this computer sends text messages (sms: addresses). Install KDE Connect to send them through your phone, or Chats.</source>
        <translation>Ninguna aplicación de este equipo envía mensajes de texto (direcciones sms:). Instale KDE Connect para enviarlos a través de su teléfono, o Chats.</translation>
    </message>
    <message>
        <source>No application on this computer writes e-mails (mailto: addresses). Install a mail client such as Thunderbird or Evolution, or choose one as the default for e-mail in the system settings.</source>
        <translation>Ninguna aplicación de este equipo escribe correos (direcciones mailto:). Instale un cliente de correo como Thunderbird o Evolution, o elija uno como predeterminado para el correo en la configuración del sistema.</translation>
    </message>
    <message>
        <source>No application on this computer opens FaceTime calls (facetime: addresses). FaceTime runs on Apple devices only: place a phone call or send a message instead.</source>
        <translation>Ninguna aplicación de este equipo abre llamadas de FaceTime (direcciones facetime:). FaceTime solo funciona en dispositivos de Apple: haga una llamada de teléfono o envíe un mensaje.</translation>
    </message>
    <message>
        <source>No application on this computer opens %1 addresses.</source>
        <translation>Ninguna aplicación de este equipo abre direcciones %1.</translation>
    </message>
    <message>
        <source>%1 could not be started to open the address: %2</source>
        <translation>No se pudo iniciar %1 para abrir la dirección: %2</translation>
    </message>
    <message>
        <source>Error creating call: %1</source>
        <translation>Error al crear la llamada: %1</translation>
    </message>
    <message>
        <source>Error creating Facetime call: %1</source>
        <translation>Error al crear la llamada de Facetime: %1</translation>
    </message>
    <message>
        <source>Error creating Facetime Audio call: %1</source>
        <translation>Error al crear la llamada de audio de Facetime: %1</translation>
    </message>
    <message>
        <source>Error creating eMail: %1</source>
        <translation>Error al crear el correo: %1</translation>
    </message>
    <message>
        <source>Attempt to open Telco of type: &apos;%1&apos;</source>
        <translation>Intento de abrir una comunicación de tipo: «%1»</translation>
    </message>
    <message>
        <source>Couldn&apos;t find the url for the telco, you might have accidentaly closed the browser. The call will not be registered in recents.</source>
        <translation>No se encontró la dirección de la reunión; puede que haya cerrado el navegador sin querer. La llamada no se guardará en Recientes.</translation>
    </message>
</context>
<context>
    <name>CallsManagerError</name>
    <message>
        <source>Invalid Number used for CallManager API with number: %1</source>
        <translation>Se usó un número no válido: %1</translation>
    </message>
    <message>
        <source>Telco not supported: %1</source>
        <translation>Comunicación no admitida: %1</translation>
    </message>
    <message>
        <source>Error Creating call in Workspace with number: %1</source>
        <translation>Error al crear la llamada con el número: %1</translation>
    </message>
    <message>
        <source>Error Creating telco in browser: %1</source>
        <translation>Error al abrir la comunicación en el navegador: %1</translation>
    </message>
    <message>
        <source>Error Creating eMail: %1</source>
        <translation>Error al crear el correo: %1</translation>
    </message>
</context>
<context>
    <name>CitySearchField</name>
    <message>
        <source>Choose your city</source>
        <translation>Elija su ciudad</translation>
    </message>
    <message>
        <source>Type the first letters of a city, then pick it from the list below.</source>
        <translation>Escriba las primeras letras de una ciudad y elíjala en la lista de abajo.</translation>
    </message>
    <message>
        <source>Cities</source>
        <translation>Ciudades</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>telverra: no display to show the window on (neither DISPLAY nor WAYLAND_DISPLAY is set).
The commands work without one: try &apos;telverra --help&apos;.</source>
        <translation>telverra: no hay pantalla en la que mostrar la ventana (no están definidas ni DISPLAY ni WAYLAND_DISPLAY).
Las órdenes funcionan sin ella: pruebe «telverra --help».</translation>
    </message>
    <message>
        <source>telverra: %1
Try &apos;telverra --help&apos;.</source>
        <translation>telverra: %1
Pruebe «telverra --help».</translation>
    </message>
    <message>
        <source>telverra: no action %1
Try &apos;telverra --help&apos;.</source>
        <translation>telverra: no existe la acción %1
Pruebe «telverra --help».</translation>
    </message>
    <message>
        <source>Usage: telverra [COMMAND [ARGUMENTS]] [OPTIONS]

Without a command, Telverra opens its window.

Launch commands (forwarded to a running window when there is one):
  call NUMBER               place a phone call (tel:)
  message DESTINATION       send a text message (sms:)
  mail ADDRESS              write an e-mail (mailto:)
  facetime DESTINATION      start a FaceTime video call
  facetime-audio DESTINATION  start a FaceTime audio call
  open URL                  open a Google Meet, Zoom, Webex or Jitsi meeting link
  meet                      start a new Google Meet meeting and record its address

Listings:
  recents [--search TEXT] [--json]    the history of launches, newest first
  favorites [--json]                  saved meeting links and favourite contacts
  contacts [--search TEXT] [--json]   the address book

Options:
  --contacts DIR   read the address book from this vCard folder
  --info FILE      read the deployment settings (Info.ini) from FILE
  --self-test      load every screen without showing it, then exit
  --action NAME    run a desktop action in the window: new-meet, call-from-clipboard, dialer
  -h, --help       show this help
  -v, --version    show the version

Exit status: 0 on success, 1 when a launch failed (the reason on standard error), 2 on a usage error.
</source>
        <extracomment>The whole of &quot;telverra --help&quot;. Command and option names stay as they are; keep the columns aligned.</extracomment>
        <translation>Uso: telverra [ORDEN [ARGUMENTOS]] [OPCIONES]

Sin ninguna orden, Telverra abre su ventana.

Órdenes de llamada (se pasan a la ventana abierta, si la hay):
  call NÚMERO               hace una llamada de teléfono (tel:)
  message DESTINO           envía un mensaje de texto (sms:)
  mail DIRECCIÓN            escribe un correo (mailto:)
  facetime DESTINO          inicia una videollamada de FaceTime
  facetime-audio DESTINO    inicia una llamada de audio de FaceTime
  open URL                  abre un enlace de reunión de Google Meet, Zoom, Webex o Jitsi
  meet                      inicia una reunión nueva de Google Meet y guarda su dirección

Listados:
  recents [--search TEXTO] [--json]    el historial de llamadas, de la más reciente a la más antigua
  favorites [--json]                   los enlaces de reunión guardados y los contactos favoritos
  contacts [--search TEXTO] [--json]   la libreta de direcciones

Opciones:
  --contacts CARPETA   lee la libreta de direcciones de esta carpeta de vCard
  --info ARCHIVO       lee la configuración de instalación (Info.ini) de ARCHIVO
  --self-test          carga todas las pantallas sin mostrarlas y termina
  --action NOMBRE      ejecuta una acción del escritorio en la ventana: new-meet, call-from-clipboard, dialer
  -h, --help           muestra esta ayuda
  -v, --version        muestra la versión

Estado de salida: 0 si todo fue bien, 1 si falló una llamada (el motivo va a la salida de errores), 2 si hubo un
error de uso.
</translation>
    </message>
    <message>
        <source>%1 needs a value</source>
        <translation>%1 necesita un valor</translation>
    </message>
    <message>
        <source>unknown option %1</source>
        <translation>opción desconocida %1</translation>
    </message>
    <message>
        <source>unknown command %1</source>
        <translation>orden desconocida %1</translation>
    </message>
    <message>
        <source>%1 takes one destination</source>
        <translation>%1 admite un solo destino</translation>
    </message>
    <message>
        <source>%1 takes no destination</source>
        <translation>%1 no admite ningún destino</translation>
    </message>
    <message>
        <source>--json and --search go with recents, favorites and contacts</source>
        <translation>--json y --search solo valen con recents, favorites y contacts</translation>
    </message>
    <message>
        <source>favorites takes no --search</source>
        <translation>favorites no admite --search</translation>
    </message>
    <message>
        <source>Not a number that can be called: %1</source>
        <translation>No es un número al que se pueda llamar: %1</translation>
    </message>
    <message>
        <source>Unknown command: %1</source>
        <translation>Orden desconocida: %1</translation>
    </message>
</context>
<context>
    <name>ContactLabels</name>
    <message>
        <source>mobile</source>
        <translation>móvil</translation>
    </message>
    <message>
        <source>iPhone</source>
        <translation>iPhone</translation>
    </message>
    <message>
        <source>main</source>
        <translation>principal</translation>
    </message>
    <message>
        <source>home fax</source>
        <translation>fax de casa</translation>
    </message>
    <message>
        <source>work fax</source>
        <translation>fax del trabajo</translation>
    </message>
    <message>
        <source>other fax</source>
        <translation>otro fax</translation>
    </message>
    <message>
        <source>pager</source>
        <translation>buscapersonas</translation>
    </message>
    <message>
        <source>home</source>
        <translation>casa</translation>
    </message>
    <message>
        <source>work</source>
        <translation>trabajo</translation>
    </message>
    <message>
        <source>other</source>
        <translation>otro</translation>
    </message>
</context>
<context>
    <name>ContactStoreManagerError</name>
    <message>
        <source>💥! Error fetching contacts: %1</source>
        <translation>💥! Error al leer los contactos: %1</translation>
    </message>
    <message>
        <source>💥! Error accessing container: %1. Please go to settings and allow the app to access contacts.</source>
        <translation>💥! Error al acceder a la libreta de direcciones: %1. Vaya a la configuración y permita que la aplicación acceda a los contactos.</translation>
    </message>
    <message>
        <source>💥! Error trying to find contact with specific ContactID: %1.</source>
        <translation>💥! Error al buscar el contacto con el identificador %1.</translation>
    </message>
    <message>
        <source>💥! Permission error when attempting to access contact store. Please go to settings and allow the app to access contacts.</source>
        <translation>💥! Error de permisos al acceder a los contactos. Vaya a la configuración y permita que la aplicación acceda a los contactos.</translation>
    </message>
</context>
<context>
    <name>ContactsCellView</name>
    <message>
        <source>Call</source>
        <translation>Llamar</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Mensaje</translation>
    </message>
    <message>
        <source>Mail</source>
        <translation>Correo</translation>
    </message>
    <message>
        <source>FaceTime</source>
        <translation>FaceTime</translation>
    </message>
    <message>
        <source>FaceTime audio</source>
        <translation>Audio de FaceTime</translation>
    </message>
    <message>
        <source>%1 %2</source>
        <extracomment>An action on a contact, then the contact&apos;s name: &quot;Call Ana Pérez&quot;</extracomment>
        <translation>%1 a %2</translation>
    </message>
    <message>
        <source>No e-mail address</source>
        <translation>Sin dirección de correo</translation>
    </message>
    <message>
        <source>No phone number</source>
        <translation>Sin número de teléfono</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
</context>
<context>
    <name>DailyWeatherPopOverView</name>
    <message>
        <source>Choose your city</source>
        <translation>Elija su ciudad</translation>
    </message>
    <message>
        <source>No weather yet.</source>
        <translation>Aún no hay tiempo.</translation>
    </message>
</context>
<context>
    <name>DesktopSearch</name>
    <message>
        <source>Call</source>
        <translation>Llamar</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Mensaje</translation>
    </message>
    <message>
        <source>Mail</source>
        <translation>Correo</translation>
    </message>
    <message>
        <source>Call %1 (%2)</source>
        <extracomment>A result of the desktop&apos;s search: %1 is a contact&apos;s name, %2 a label and a number or address, &quot;mobile +34 600…&quot;</extracomment>
        <translation>Llamar a %1 (%2)</translation>
    </message>
    <message>
        <source>Message %1 (%2)</source>
        <translation>Mensaje a %1 (%2)</translation>
    </message>
    <message>
        <source>Mail %1 (%2)</source>
        <translation>Correo a %1 (%2)</translation>
    </message>
</context>
<context>
    <name>DialerView</name>
    <message>
        <source>number</source>
        <translation>número</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Número</translation>
    </message>
    <message>
        <source>invalid number</source>
        <translation>número no válido</translation>
    </message>
    <message>
        <source>invalid URL on Clipboard</source>
        <translation>URL no válida en el portapapeles</translation>
    </message>
    <message>
        <source>Call from clipboard</source>
        <translation>Llamar desde el portapapeles</translation>
    </message>
    <message>
        <source>Call</source>
        <translation>Llamar</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Borrar</translation>
    </message>
</context>
<context>
    <name>FavoritesView</name>
    <message>
        <source>Remove “%1” from your favorites?</source>
        <translation>¿Quitar «%1» de sus favoritos?</translation>
    </message>
    <message numerus="yes">
        <source>total of %n</source>
        <extracomment>How many favourite contacts or meeting links there are</extracomment>
        <translation>
            <numerusform>%n en total</numerusform>
            <numerusform>%n en total</numerusform>
        </translation>
    </message>
    <message>
        <source>Contacts</source>
        <translation>Contactos</translation>
    </message>
    <message>
        <source>Add contacts from the Contacts screen or the history.</source>
        <translation>Añada contactos desde la pantalla Contactos o desde el historial.</translation>
    </message>
    <message>
        <source>Telcos</source>
        <translation>Enlaces de reunión</translation>
    </message>
    <message>
        <source>Add a meeting link</source>
        <translation>Añadir un enlace de reunión</translation>
    </message>
    <message>
        <source>Add a meeting link with +</source>
        <translation>Añada un enlace de reunión con +</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Acciones</translation>
    </message>
    <message>
        <source>Remove from Favorites</source>
        <translation>Quitar de favoritos</translation>
    </message>
    <message>
        <source>Copy Value to clipboard</source>
        <translation>Copiar el valor al portapapeles</translation>
    </message>
    <message>
        <source>Edit favorite</source>
        <translation>Editar favorito</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Quitar</translation>
    </message>
    <message>
        <source>Favourite contacts</source>
        <translation>Contactos favoritos</translation>
    </message>
    <message>
        <source>Saved links</source>
        <translation>Enlaces guardados</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
</context>
<context>
    <name>GeneralSettingsView</name>
    <message>
        <source>Tools Options:</source>
        <translation>Opciones de las herramientas:</translation>
    </message>
    <message>
        <source>Use Chrome as default browser</source>
        <translation>Usar Chrome como navegador predeterminado</translation>
    </message>
    <message>
        <source>Copy called numbers and urls to Clipboard</source>
        <translation>Copiar al portapapeles los números y URL llamados</translation>
    </message>
    <message>
        <source>Update weather information every hour?</source>
        <translation>¿Actualizar la información del tiempo cada hora?</translation>
    </message>
    <message>
        <source>Launch Options</source>
        <translation>Opciones de inicio</translation>
    </message>
    <message>
        <source>Launch at login</source>
        <translation>Iniciar al iniciar la sesión</translation>
    </message>
    <message>
        <source>Fix welcome screen with quotes on startup</source>
        <translation>Mantener la pantalla de bienvenida con citas al iniciar</translation>
    </message>
    <message>
        <source>Place for the weather:</source>
        <translation>Lugar del tiempo:</translation>
    </message>
    <message>
        <source>None yet</source>
        <translation>Ninguno todavía</translation>
    </message>
    <message>
        <source>Use my location</source>
        <translation>Usar mi ubicación</translation>
    </message>
    <message>
        <source>Forget the chosen city and use the desktop&apos;s location service again.</source>
        <translation>Olvidar la ciudad elegida y volver a usar el servicio de ubicación del escritorio.</translation>
    </message>
</context>
<context>
    <name>HomeWindowViewModel</name>
    <message>
        <source>Telverra can read the clipboard only while its window is in front. Bring the window to the front and try again.</source>
        <translation>Telverra solo puede leer el portapapeles mientras su ventana está en primer plano. Traiga la ventana al frente y vuelva a intentarlo.</translation>
    </message>
    <message>
        <source>From your location</source>
        <translation>Según su ubicación</translation>
    </message>
    <message>
        <source>Chosen by you</source>
        <translation>Elegida por usted</translation>
    </message>
    <message>
        <source>Guessed from your time zone</source>
        <translation>Deducida de su zona horaria</translation>
    </message>
</context>
<context>
    <name>KeypadButton</name>
    <message>
        <source>0, hold for +</source>
        <translation>0, mantener para +</translation>
    </message>
</context>
<context>
    <name>LaunchAtLogin</name>
    <message>
        <source>Start Telverra when you log in</source>
        <translation>Iniciar Telverra al iniciar la sesión</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ver</translation>
    </message>
    <message>
        <source>Toggle sidebar</source>
        <translation>Mostrar u ocultar la barra lateral</translation>
    </message>
    <message>
        <source>Update weather info</source>
        <translation>Actualizar el tiempo</translation>
    </message>
    <message>
        <source>iPhone</source>
        <translation>iPhone</translation>
    </message>
    <message>
        <source>Recents</source>
        <translation>Recientes</translation>
    </message>
    <message>
        <source>Favorites</source>
        <translation>Favoritos</translation>
    </message>
    <message>
        <source>Contacts</source>
        <translation>Contactos</translation>
    </message>
    <message>
        <source>&amp;Call</source>
        <translation>&amp;Llamada</translation>
    </message>
    <message>
        <source>Make call from dialpad</source>
        <translation>Llamar desde el teclado</translation>
    </message>
    <message>
        <source>Clear display</source>
        <translation>Borrar la pantalla</translation>
    </message>
    <message>
        <source>Make call from clipboard</source>
        <translation>Llamar desde el portapapeles</translation>
    </message>
    <message>
        <source>Create new Google Meet call</source>
        <translation>Crear una reunión de Google Meet</translation>
    </message>
    <message>
        <source>Error trying to launch call</source>
        <translation>Error al intentar iniciar la llamada</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>Aceptar</translation>
    </message>
</context>
<context>
    <name>QuickActionsSettingsView</name>
    <message>
        <source>Opens in %1</source>
        <translation>Se abre en %1</translation>
    </message>
    <message>
        <source>No application installed</source>
        <translation>Ninguna aplicación instalada</translation>
    </message>
    <message>
        <source>The desktop asks which application to use</source>
        <translation>El escritorio pregunta qué aplicación usar</translation>
    </message>
    <message>
        <source>Customize your at your liking all the quick action buttons you want to have available on contacts UI for faster access to communicastions.</source>
        <translation>Personalice a su gusto los botones de acción rápida que quiere tener en los contactos para comunicarse más rápido.</translation>
    </message>
    <message>
        <source>Default Actions:</source>
        <translation>Acciones predeterminadas:</translation>
    </message>
    <message>
        <source>iPhone calls (default)</source>
        <translation>Llamadas de iPhone (predeterminado)</translation>
    </message>
    <message>
        <source>Mail</source>
        <translation>Correo</translation>
    </message>
    <message>
        <source>Calls:</source>
        <translation>Llamadas:</translation>
    </message>
    <message>
        <source>Facetime</source>
        <translation>Facetime</translation>
    </message>
    <message>
        <source>Facetime Audio</source>
        <translation>Audio de Facetime</translation>
    </message>
    <message>
        <source>Messages:</source>
        <translation>Mensajes:</translation>
    </message>
    <message>
        <source>iMessage</source>
        <translation>iMessage</translation>
    </message>
    <message>
        <source>Skype</source>
        <translation>Skype</translation>
    </message>
</context>
<context>
    <name>RecentCallItemCellView</name>
    <message>
        <source>Add to favorites</source>
        <translation>Añadir a favoritos</translation>
    </message>
    <message>
        <source>Copy Value to clipboard</source>
        <translation>Copiar el valor al portapapeles</translation>
    </message>
    <message>
        <source>Remove from history</source>
        <translation>Quitar del historial</translation>
    </message>
</context>
<context>
    <name>RecentCallItemViewModel</name>
    <message>
        <source>today</source>
        <extracomment>The day of a call in the history</extracomment>
        <translation>hoy</translation>
    </message>
    <message>
        <source>yesterday</source>
        <extracomment>The day of a call in the history</extracomment>
        <translation>ayer</translation>
    </message>
</context>
<context>
    <name>RecentsView</name>
    <message>
        <source>search...</source>
        <translation>buscar…</translation>
    </message>
    <message>
        <source>Search the history</source>
        <translation>Buscar en el historial</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>Recargar</translation>
    </message>
    <message numerus="yes">
        <source>%n entries</source>
        <translation>
            <numerusform>%n entrada</numerusform>
            <numerusform>%n entradas</numerusform>
        </translation>
    </message>
    <message>
        <source>History</source>
        <translation>Historial</translation>
    </message>
</context>
<context>
    <name>ResetSettingsView</name>
    <message>
        <source>Reset recent calls history</source>
        <translation>Restablecer el historial de llamadas recientes</translation>
    </message>
    <message>
        <source>Reset favorite telcos</source>
        <translation>Restablecer los enlaces de reunión favoritos</translation>
    </message>
    <message>
        <source>Reset favorite contacts</source>
        <translation>Restablecer los contactos favoritos</translation>
    </message>
    <message>
        <source>**Warning !!!**</source>
        <translation>**¡¡¡Atención!!!**</translation>
    </message>
    <message>
        <source>You will delete all stored information on the database. Proceed with caution.</source>
        <translation>Borrará toda la información guardada en la base de datos. Proceda con cuidado.</translation>
    </message>
    <message>
        <source>Recent Calls History:</source>
        <translation>Historial de llamadas recientes:</translation>
    </message>
    <message>
        <source>Reset call history</source>
        <translation>Restablecer el historial de llamadas</translation>
    </message>
    <message>
        <source>Favorites:</source>
        <translation>Favoritos:</translation>
    </message>
    <message>
        <source>ERROR</source>
        <translation>ERROR</translation>
    </message>
    <message>
        <source>Are you sure you want to delete all items in the database ?</source>
        <translation>¿Seguro que quiere borrar todos los elementos de la base de datos?</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation>Descartar</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Restablecer</translation>
    </message>
</context>
<context>
    <name>SettingsView</name>
    <message>
        <source>Telverra Settings</source>
        <translation>Preferencias de Telverra</translation>
    </message>
    <message>
        <source>General</source>
        <translation>General</translation>
    </message>
    <message>
        <source>Quick Actions</source>
        <translation>Acciones rápidas</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Restablecer</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Acerca de</translation>
    </message>
</context>
<context>
    <name>SidebarListView</name>
    <message>
        <source>Tools</source>
        <translation>Herramientas</translation>
    </message>
    <message>
        <source>iPhone</source>
        <translation>iPhone</translation>
    </message>
    <message>
        <source>Recents</source>
        <translation>Recientes</translation>
    </message>
    <message>
        <source>Favorites</source>
        <translation>Favoritos</translation>
    </message>
    <message>
        <source>Contacts</source>
        <translation>Contactos</translation>
    </message>
    <message>
        <source>Configuration</source>
        <translation>Configuración</translation>
    </message>
    <message>
        <source>Quit app</source>
        <translation>Salir de la aplicación</translation>
    </message>
</context>
<context>
    <name>StoreErrorWindow</name>
    <message>
        <source>Telverra cannot open its history</source>
        <translation>Telverra no puede abrir su historial</translation>
    </message>
    <message>
        <source>The file that keeps your call history and favourites could not be opened:</source>
        <translation>No se pudo abrir el archivo que guarda su historial de llamadas y sus favoritos:</translation>
    </message>
    <message>
        <source>Store file</source>
        <translation>Archivo de datos</translation>
    </message>
    <message>
        <source>Nothing was changed or deleted: the file is exactly as it was.</source>
        <translation>No se ha cambiado ni borrado nada: el archivo está exactamente como estaba.</translation>
    </message>
    <message>
        <source>To start with an empty history, move the file aside (for example, rename it to Telverra.sqlite.damaged) and start Telverra again. Keep the moved file if you want to recover it.</source>
        <translation>Para empezar con un historial vacío, aparte el archivo (por ejemplo, cámbiele el nombre a Telverra.sqlite.damaged) y vuelva a iniciar Telverra. Conserve el archivo apartado si quiere recuperarlo.</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Salir</translation>
    </message>
</context>
<context>
    <name>ToolbarPopupMenu</name>
    <message>
        <source>Launch</source>
        <translation>Iniciar</translation>
    </message>
    <message>
        <source>New Google Meet</source>
        <translation>Nueva reunión de Google Meet</translation>
    </message>
    <message>
        <source>Call from clipboard</source>
        <translation>Llamar desde el portapapeles</translation>
    </message>
</context>
<context>
    <name>WeatherCardView</name>
    <message>
        <source>No weather yet</source>
        <translation>Todavía no hay información del tiempo</translation>
    </message>
    <message>
        <source>Weather: %1</source>
        <translation>Tiempo: %1</translation>
    </message>
    <message>
        <source>Shows the daily forecast</source>
        <translation>Muestra el pronóstico diario</translation>
    </message>
</context>
<context>
    <name>WeatherPresentation</name>
    <message>
        <source>yesterday</source>
        <translation>ayer</translation>
    </message>
    <message>
        <source>Today</source>
        <translation>Hoy</translation>
    </message>
    <message>
        <source>free weather data provided by [Open Weather Map](%1). Last updated on %2 at %3</source>
        <translation>datos meteorológicos gratuitos de [Open Weather Map](%1). Última actualización: %2, %3</translation>
    </message>
    <message>
        <source>Data from [MET Norway](%1). Last updated on %2 at %3</source>
        <translation>Datos de [MET Norway](%1). Actualizado por última vez el %2 a las %3</translation>
    </message>
    <message>
        <source>Feels like</source>
        <translation>Sensación</translation>
    </message>
    <message>
        <source>Humidity</source>
        <translation>Humedad</translation>
    </message>
    <message>
        <source>Wind</source>
        <translation>Viento</translation>
    </message>
    <message>
        <source>Pressure</source>
        <translation>Presión</translation>
    </message>
    <message>
        <source>UV index</source>
        <translation>Índice UV</translation>
    </message>
    <message>
        <source>Dew point</source>
        <translation>Punto de rocío</translation>
    </message>
    <message>
        <source>Visibility</source>
        <translation>Visibilidad</translation>
    </message>
    <message>
        <source>Sunrise</source>
        <translation>Amanecer</translation>
    </message>
    <message>
        <source>Sunset</source>
        <translation>Atardecer</translation>
    </message>
    <message>
        <source>%1 hPa</source>
        <translation>%1 hPa</translation>
    </message>
    <message>
        <source>%1 km</source>
        <translation>%1 km</translation>
    </message>
</context>
<context>
    <name>WeatherStatus</name>
    <message>
        <source>This key has no One Call 3.0 subscription. The weather comes from MET Norway instead.</source>
        <translation>Esta clave no tiene suscripción a One Call 3.0. El tiempo viene de MET Norway en su lugar.</translation>
    </message>
    <message>
        <source>No weather: the desktop&apos;s location service is off or refused Telverra. Choose your city above.</source>
        <translation>Sin tiempo: el servicio de ubicación del escritorio está apagado o ha rechazado a Telverra. Elija su ciudad arriba.</translation>
    </message>
    <message>
        <source>No weather yet: waiting for a position from the location service, or choose your city above.</source>
        <translation>Aún no hay tiempo: esperando una posición del servicio de ubicación, o elija su ciudad arriba.</translation>
    </message>
    <message>
        <source>No weather yet: the weather service has not answered.</source>
        <translation>Aún no hay tiempo: el servicio del tiempo no ha respondido.</translation>
    </message>
</context>
<context>
    <name>Welcome</name>
    <message>
        <source>Good morning !!!</source>
        <translation>¡¡¡Buenos días!!!</translation>
    </message>
    <message>
        <source>Good afternoon !!!</source>
        <translation>¡¡¡Buenas tardes!!!</translation>
    </message>
    <message>
        <source>Good evening !!!</source>
        <translation>¡¡¡Buenas tardes!!!</translation>
    </message>
    <message>
        <source>Good night !!!</source>
        <translation>¡¡¡Buenas noches!!!</translation>
    </message>
</context>
</TS>
